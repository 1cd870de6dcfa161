"""What a prototype is judged by: its response, and the error of a bank built on it.

Taps are arrays over time; frequencies are in units of pi/bands, the width of a band.
"""

import numpy as np

GRID = 1 << 17           # bins of a full turn: hundreds to each side lobe of the shortest prototype
STOP = 1.5               # where the stop band begins


def unfolded(half):
    """The taps 0..2N of a symmetric prototype, from 0..N."""
    return np.concatenate([half, half[-2::-1]])


def response(taps, bands):
    """Frequencies, and the magnitude beside that at zero."""
    size = max(GRID, GRID * bands // 64)
    magnitude = np.abs(np.fft.rfft(taps, size))
    return np.arange(size // 2 + 1) * (2 * bands / size), magnitude / magnitude[0]


def decibels(ratio):
    return 20 * np.log10(np.maximum(ratio, 1e-12))


def half_power(taps, bands):
    """Where the power has fallen to a half."""
    frequencies, magnitude = response(taps, bands)
    after = int(np.argmax(magnitude < np.sqrt(0.5)))
    low, high = magnitude[after], magnitude[after - 1]
    return frequencies[after] - (np.sqrt(0.5) - low) / (high - low) * frequencies[1]


def worst_lobe(taps, bands):
    """The level of the stop band's highest point in decibels, and its frequency."""
    frequencies, magnitude = response(taps, bands)
    stop = frequencies >= STOP
    at = int(np.argmax(magnitude[stop]))
    return float(decibels(magnitude[stop][at])), float(frequencies[stop][at])


def chain_sums(taps, bands, centre):
    """What a sample adds to the output of analysis and synthesis, by its place in a block.

    Aliases of neighbouring bands cancel by the modulation, whatever the taps. What is
    left of sample x[t] in the output at t + centre + 2 k bands + constant is, for each
    place r in a block, the sum of taps[a] taps[s] over a + s = centre + 2 k bands with
    s = r mod bands: 1 for k = 0 and 0 for others would be perfect. The sums by k.
    """
    index = np.arange(len(taps))
    sums = {}
    for total in range(centre % (2 * bands), 2 * len(taps) - 1, 2 * bands):
        partner = total - index
        inside = (partner >= 0) & (partner < len(taps))
        products = np.where(inside, taps[np.clip(partner, 0, len(taps) - 1)] * taps, 0)
        sums[(total - centre) // (2 * bands)] = np.bincount(index % bands, products, bands)
    return sums


def chain_error(taps, bands, centre):
    """Gain and relative squared error of analysis and synthesis, for white noise."""
    sums = chain_sums(taps, bands, centre)
    error = sum(np.mean((values - (k == 0)) ** 2) for k, values in sums.items())
    return float(np.mean(sums[0])), float(error)
