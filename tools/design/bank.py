"""Filter banks by their responses alone: no transforms, no single precision."""

import numpy as np

SLOTS = 400


def real_filters(taps, bands, order):
    """Rows of analysis and of synthesis; taps 0..2 order bands - 1."""
    time, band = np.arange(2 * order * bands), np.arange(bands)[:, None] + 0.5
    sign = 1 if order == 5 else -1
    analysis = np.cos(np.pi / bands * band * (time - 1.5 * bands)) * (sign / (2 * bands))
    synthesis = np.cos(np.pi / bands * band * (time - 0.5 * bands)) * 4
    return taps * analysis, taps * synthesis


def complex_filters(taps, bands, order):
    time, band = np.arange(2 * order * bands), np.arange(bands)[:, None] + 0.5
    sign = 1 if order == 5 else -1
    turns = np.exp(1j * np.pi / bands * band * time)
    return taps * turns * (-sign / (2 * bands)), taps * turns * 2


def low_delay_filters(table, bands):
    """The complex bank of ten blocks that reads its table backwards at both ends."""
    time, k = np.arange(10 * bands), np.arange(bands)[:, None]
    parity, turn = 1 - 2 * (k % 2), 1j * np.pi / bands * (k + 0.5)
    half = np.pi / (4 * bands)
    taps = table[::-1]
    analysis = -1j * parity * np.exp(-1j * parity * half + turn * (time + 1)) / (2 * bands)
    synthesis = 2 * np.exp(turn * (time - 5 * bands) + 1j * parity * (np.pi / 2 + half))
    return taps * analysis, taps * synthesis


def round_trip(filters, bands, delay):
    """Gain and relative squared error of a noise that was taken apart and put together."""
    analysis, synthesis = filters
    length = analysis.shape[1]
    noise = np.random.default_rng(1).standard_normal(SLOTS * bands)
    padded = np.concatenate([np.zeros(length), noise])
    out = np.zeros(len(noise) + length)
    for slot in range(SLOTS):
        newest = length + (slot + 1) * bands
        samples = analysis @ padded[newest - length:newest][::-1]
        out[slot * bands:slot * bands + length] += (samples @ synthesis).real
    kept = slice(2 * length, SLOTS * bands)
    before, after = noise[2 * length - delay:SLOTS * bands - delay], out[kept]
    energy = before @ before
    return (before @ after) / energy, np.sum((after - before) ** 2) / energy
