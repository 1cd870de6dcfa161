"""Symmetric prototypes: weighted least squares, with knobs turned until the goals are met.

The unknowns are taps 0..N of a prototype of 2N + 1 taps. A design minimises

    exactness * (error of the bank) + (weighted energy of the stop band) + (tails in time)

with some taps fixed and the energy held. The error of the bank is a sum of squares of
quadratics in the taps, the rest are squares of linear terms, so that Gauss-Newton settles
in a few steps from any reasonable low-pass.
"""

import dataclasses

import numpy as np
from scipy import optimize

import measures

BANDS = 64
HOLD = 30                # weight of the energy, high enough to be a constraint


@dataclasses.dataclass(frozen=True)
class Knobs:
    exactness: float     # weight of the bank's error
    edge: float = 1.5    # where the weighted stop band begins, in pi/bands
    slope: float = 0.0   # the weight of the stop band's energy grows as frequency ** slope
    tails: float = 0.0   # weight of the squared taps by their distance from the centre ** 4


class Problem:
    def __init__(self, order, fixed, gain=1.0):
        self.order, self.gain = order, gain
        self.centre = order * BANDS
        self.fixed = {0: 0.0, **fixed}
        self.free = np.array([n for n in range(self.centre + 1) if n not in self.fixed])
        n = np.arange(2 * self.centre + 1)
        self.fold = np.minimum(n, 2 * self.centre - n)

    def start(self):
        """A windowed low-pass with the fixed taps put in."""
        n = np.arange(-self.centre, 1)
        half = np.sinc(0.6 * n / BANDS) * np.kaiser(2 * self.centre + 1, 7.5)[:self.centre + 1]
        half *= np.sqrt(BANDS / np.sum(measures.unfolded(half) ** 2))
        half[list(self.fixed)] = list(self.fixed.values())
        return half

    def bank_error(self, half):
        """Residuals whose squares add up to the bank's error, and their derivatives."""
        taps = half[self.fold]
        row = np.arange(len(taps)) % BANDS
        rows = np.arange(BANDS // 2 + 1)                   # the others mirror them
        twice = np.where(rows % (BANDS // 2), 2, 1)
        values, slopes = [], []
        for k in range(self.order):
            shift = 2 * k * BANDS
            padded = np.concatenate([np.zeros(shift), taps, np.zeros(shift)])
            later, earlier = padded[2 * shift:], padded[:len(taps)]
            weight = np.sqrt(twice * (2 if k else 1) / BANDS)      # k and -k are alike
            sums = np.bincount(row, taps * later, BANDS)[rows]
            slope = np.zeros((BANDS, len(taps)))
            slope[row, np.arange(len(taps))] = later + earlier
            folded = slope[rows, :self.centre + 1]
            folded[:, :-1] += slope[rows, :self.centre:-1]
            values.append(weight * (sums if k else sums - 1))
            slopes.append(weight[:, None] * folded)
        return np.concatenate(values), np.concatenate(slopes)

    def energy(self, half):
        twice = np.full(len(half), 2.0)
        twice[-1] = 1.0
        value = np.sum(twice * half ** 2) / BANDS - self.gain
        return np.array([value]), (2 * twice * half / BANDS)[None, :]

    def linear(self, knobs):
        """The terms of the stop band and of the tails, one row each."""
        frequencies = np.concatenate(
            [np.linspace(knobs.edge, 8, 300), np.linspace(8.05, BANDS, 500)])
        weight = np.gradient(frequencies) * (frequencies / knobs.edge) ** knobs.slope
        distance = self.centre - np.arange(self.centre + 1)
        stop = 2 * np.cos(np.outer(frequencies * np.pi / BANDS, distance))
        stop[:, -1] = 1
        tails = np.diag(np.sqrt(knobs.tails) * (distance / self.centre) ** 2)
        return np.concatenate([np.sqrt(weight)[:, None] * stop / 90, tails])

    def solve(self, knobs, start):
        linear = self.linear(knobs)

        def terms(half):
            error, error_slope = self.bank_error(half)
            energy, energy_slope = self.energy(half)
            weight = np.sqrt(knobs.exactness)
            return (np.concatenate([weight * error, HOLD * energy, linear @ half]),
                    np.concatenate([weight * error_slope, HOLD * energy_slope, linear]))

        half = start.copy()
        values, slopes = terms(half)
        damping = 1e-12
        for _ in range(60):
            slopes = slopes[:, self.free]
            normal = slopes.T @ slopes
            while True:
                step = np.linalg.solve(normal + damping * np.eye(len(normal)), slopes.T @ values)
                trial = half.copy()
                trial[self.free] -= step
                new_values, new_slopes = terms(trial)
                if new_values @ new_values <= values @ values or damping > 1:
                    break
                damping *= 10
            gained = 1 - (new_values @ new_values) / (values @ values)
            half, values, slopes = trial, new_values, new_slopes
            damping = max(damping / 10, 1e-12)
            if gained < 1e-10:
                break
        return half


def as_stored(half):
    """The taps as the tables have them, in single precision."""
    return measures.unfolded(np.float32(half).astype(float))


def properties(half):
    order = (len(half) - 1) // BANDS
    taps = as_stored(half)
    lobe, at = measures.worst_lobe(taps, BANDS)
    gain, error = measures.chain_error(taps, BANDS, 2 * order * BANDS)
    return {"lobe": lobe, "lobe at": at, "edge": measures.half_power(taps, BANDS),
            "energy": float(np.sum(taps ** 2) / BANDS), "gain": gain, "error": error}


def design(problem, knobs, turned, goals, progress):
    """Solves with the knobs as they are, or turns two of them to the goals."""
    half = problem.start()

    def misses(logarithms):
        nonlocal half
        setting = dataclasses.replace(
            knobs, **{name: float(np.exp(value)) for name, value in zip(turned, logarithms)})
        half = problem.solve(setting, half)
        found = properties(half)
        progress(f"lobe {found['lobe']:.2f} dB, error {found['error']:.2e}")
        return [found["lobe"] - goals["lobe"], 10 * np.log(found["error"] / goals["error"])]

    first = [np.log(getattr(knobs, name)) for name in turned]
    if turned:
        first = optimize.root(misses, first,
                              options={"eps": 1e-3, "xtol": 1e-4, "maxfev": 40}).x
    misses(first)
    return half
