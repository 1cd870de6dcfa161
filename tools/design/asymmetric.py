"""The asymmetric prototypes of low delay: one shape, sampled for 64, 128 and 256 bands.

The shape g is a spline over ten blocks of time; the bank of M bands has the taps
h[d] = g((d + 1/2) / M), d = 0..10M-1, and its table holds them backwards. Aliases of
neighbouring bands cancel whatever the taps are. Reconstruction with a delay of 4M is then

    sum of g(u + i) g(1 - u + j) over i + j = e  is  1 for e = 4, and 0 for other even e

for every u between 0 and 1: quadratics in the spline's coefficients, which don't know
the number of bands. A design minimises

    exactness * (their squared errors) + (weighted energy of the stop band)

while the peak of each table and the energy are held. The weights of the stop band are
raised where it is high (Lawson's method), so that its worst lobe comes down, and the
exactness is turned until the bank's error is what is allowed.
"""

import numpy as np
from scipy.interpolate import BSpline
from scipy.ndimage import maximum_filter1d

import measures

BLOCKS = 10
PIECES = 10              # of the spline, in each block
DEGREE = 5
PLACES = 48              # values of u from 0 to 1/2; the others mirror them
HOLD = 1e3               # weight of what is held
FLOOR = 0.005            # least weight of a frequency beside the greatest
ROUNDS = 40              # of weighting

# The peak of each table: where it stands, and its value.
PEAKS = {64: (465, 0.939412), 128: (930, 0.939452), 256: (1860, 0.939460)}
ENERGY = 71.517          # of the table of 64 bands
WORST_ERROR = 3e-7
ERROR = 2.8e-7           # aimed at: rounding and the signal must not lift it over the worst
WORST_LOBE = -70.5       # dB


def basis(time):
    knots = np.linspace(0, BLOCKS, BLOCKS * PIECES + 1)
    knots = np.concatenate([[0] * DEGREE, knots, [BLOCKS] * DEGREE])
    return BSpline.design_matrix(time, knots, DEGREE).toarray()


def instants(bands):
    return (np.arange(BLOCKS * bands) + 0.5) / bands


def response_terms(frequencies):
    """Real and imaginary parts of the spline's response, as rows on its coefficients."""
    time = instants(128)
    turns = np.exp(-1j * np.pi * np.outer(frequencies, time - 2.7))
    return np.stack([(turns.real @ basis(time)) / 128, (turns.imag @ basis(time)) / 128])


class Problem:
    def __init__(self):
        blocks = np.arange(BLOCKS)
        place = (np.arange(PLACES) + 0.5) / (2 * PLACES)
        shape = (PLACES, BLOCKS, -1)
        self.here = basis((place[:, None] + blocks).ravel()).reshape(shape)
        self.there = basis((1 - place[:, None] + blocks).ravel()).reshape(shape)
        self.peak_terms = basis(np.array(
            [BLOCKS - (index + 0.5) / bands for bands, (index, _) in PEAKS.items()]))
        self.peaks = np.array([value for _, value in PEAKS.values()])
        self.energy_terms = basis(instants(64)) / 8
        self.frequencies = np.concatenate(
            [np.linspace(measures.STOP, 10, 400), np.linspace(10.05, 50, 400)])
        self.stop = response_terms(self.frequencies)

    def start(self):
        time = np.linspace(0.005, BLOCKS - 0.005, 1000)
        rough = np.sinc(0.62 * (time - 2.73)) * np.exp(-((time - 2.73) / 2.6) ** 2)
        return np.linalg.lstsq(basis(time), 0.94 * rough, rcond=None)[0]

    def bank_error(self, spline):
        """Residuals whose squares add up to the bank's error, and their derivatives."""
        here, there = self.here @ spline, self.there @ spline
        values, slopes = [], []
        for total in range(0, 2 * BLOCKS - 1, 2):
            i = np.arange(max(0, total - BLOCKS + 1), min(BLOCKS - 1, total) + 1)
            j = total - i
            values.append(np.sum(here[:, i] * there[:, j], axis=1) - (total == 4))
            slopes.append(np.einsum("ui,uin->un", here[:, i], self.there[:, j]) +
                          np.einsum("ui,uin->un", there[:, j], self.here[:, i]))
        mean = 1 / np.sqrt(PLACES)
        return mean * np.concatenate(values), mean * np.concatenate(slopes)

    def terms(self, spline, exactness, stop):
        error, error_slope = self.bank_error(spline)
        weight = np.sqrt(exactness)
        taps = self.energy_terms @ spline
        values = [weight * error, stop @ spline, [HOLD * (taps @ taps - ENERGY / 64)],
                  HOLD * (self.peak_terms @ spline - self.peaks)]
        slopes = [weight * error_slope, stop, [2 * HOLD * (taps @ self.energy_terms)],
                  HOLD * self.peak_terms]
        return np.concatenate(values), np.concatenate(slopes)

    def solve(self, exactness, weights, spline):
        """Gauss-Newton steps from a spline."""
        spacing = np.sqrt(weights * np.gradient(self.frequencies))
        stop = (self.stop * spacing[:, None]).reshape(-1, len(spline))
        values, slopes = self.terms(spline, exactness, stop)
        damping = 1e-6
        for _ in range(60):
            normal = slopes.T @ slopes
            while True:
                damped = normal + damping * np.diag(np.diag(normal) + 1e-9)
                trial = spline - np.linalg.solve(damped, slopes.T @ values)
                new_values, new_slopes = self.terms(trial, exactness, stop)
                if new_values @ new_values <= values @ values or damping > 1e6:
                    break
                damping *= 5
            gained = 1 - (new_values @ new_values) / (values @ values)
            spline, values, slopes = trial, new_values, new_slopes
            damping = max(damping / 5, 1e-12)
            if gained < 1e-7:
                break
        return spline


def table(spline, bands):
    return (basis(instants(bands)) @ spline)[::-1]


def properties(stored, bands):
    taps = np.float32(stored).astype(float)[::-1]
    lobe, at = measures.worst_lobe(taps, bands)
    gain, error = measures.chain_error(taps, bands, 5 * bands - 1)
    peak = int(np.argmax(taps[::-1]))
    return {"lobe": lobe, "lobe at": at, "edge": measures.half_power(taps, bands),
            "energy": float(np.sum(taps ** 2)), "gain": gain, "error": error, "peak at": peak,
            "peak": float(taps[::-1][peak])}


def design(progress):
    """The tables by their numbers of bands."""
    problem = Problem()
    spline, best, lowest = problem.start(), None, 0.0
    exactness, weights = 0.4, np.ones(len(problem.frequencies))
    for _ in range(ROUNDS):
        spline = problem.solve(exactness, weights, spline)
        found = [properties(table(spline, bands), bands) for bands in PEAKS]
        lobe = max(one["lobe"] for one in found)
        error = max(one["error"] for one in found)
        progress(f"lobe {lobe:.2f} dB, error {error:.2e}")
        if error <= 1.02 * ERROR and lobe < lowest:
            best, lowest = spline, lobe
        level = maximum_filter1d(np.hypot(*(problem.stop @ spline)), 3)     # peaks move
        weights = np.maximum(weights * (level / level.max()) ** 2, FLOOR * weights.max())
        weights /= np.mean(weights[:100])
        exactness *= np.sqrt(error / ERROR)
    # Without a best one the last is taken, of which the report says what it misses.
    return {bands: table(spline if best is None else best, bands) for bands in PEAKS}


def report(stored, bands):
    """Rows of property, goal, value found, and whether it will do."""
    found = properties(stored, bands)
    index, peak = PEAKS[bands]
    rows = [("peak at", f"{index}", f"{found['peak at']}", found["peak at"] == index),
            ("peak", f"{peak:.6f}", f"{found['peak']:.6f}",
             f"{found['peak']:.6f}" == f"{peak:.6f}"),
            ("bank's error", f"at most {WORST_ERROR:.0e}", f"{found['error']:.2e}",
             found["error"] <= WORST_ERROR),
            ("worst side lobe, dB", f"below {WORST_LOBE}",
             f"{found['lobe']:.2f} at {found['lobe at']:.3f}", found["lobe"] < WORST_LOBE)]
    energy = found["energy"] * 64 / bands
    rows.append(("energy for 64 bands", f"{ENERGY}", f"{energy:.3f}",
                 f"{energy:.3f}" == f"{ENERGY}"))
    return rows
