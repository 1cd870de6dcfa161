"""The symmetric prototypes of 64 bands and what they are designed to."""

import symmetric
from symmetric import BANDS, Knobs, Problem

# Every eighth tap of P5_p64orv301 up to the centre: its form of 8 bands, which is fixed
# to seven decimals.
ORV301_OF_8_BANDS = (
    0.0000000, 0.0005465, 0.0009161, 0.0013069, 0.0016789, 0.0020295, 0.0023811, 0.0027721,
    0.0031765, 0.0034585, 0.0035921, 0.0033237, 0.0023728, 0.0004298, -0.0028120, -0.0076085,
    -0.0141203, -0.0223801, -0.0321058, -0.0427513, -0.0534132, -0.0628251, -0.0693880,
    -0.0712581, -0.0664690, -0.0530846, -0.0294180, 0.0058273, 0.0533608, 0.1131635, 0.1843852,
    0.2652999, 0.3533309, 0.4451590, 0.5368860, 0.6242808, 0.7030584, 0.7691826, 0.8191563,
    0.8502794, 0.8608481)


class Family:
    """One prototype: its goals, how it is designed, and how it measures up."""

    def __init__(self, name, array, order, fixed, goals, knobs, turned=(), gain=1.0):
        self.name, self.array, self.order, self.fixed = name, array, order, fixed
        self.goals, self.knobs, self.turned, self.gain = goals, knobs, turned, gain

    def design(self, progress):
        return symmetric.design(Problem(self.order, self.fixed, self.gain), self.knobs,
                                self.turned, self.goals, progress)

    def report(self, half):
        """Rows of property, goal, value found, and whether it will do."""
        found = symmetric.properties(half)
        lobe, error = self.goals["lobe"], self.goals["error"]
        rows = [("-3 dB point, pi/bands", "0.5", f"{found['edge']:.5f}",
                 abs(found["edge"] - 0.5) < 5e-4),
                ("worst side lobe, dB", f"{lobe}", f"{found['lobe']:.2f} at {found['lobe at']:.3f}",
                 abs(found["lobe"] - lobe) < 0.35),
                ("energy per band", "1", f"{found['energy']:.7f}", abs(found["energy"] - 1) < 2e-5),
                ("bank's error", f"{error:.1e}", f"{found['error']:.2e}",
                 abs(found["error"] / error - 1) < 0.05)]
        stored = symmetric.as_stored(half)
        for tap, value in self.goals["taps"].items():
            rows.append((f"tap {tap}", f"{value:.6f}", f"{stored[tap]:.6f}",
                         f"{stored[tap]:.6f}" == f"{value:.6f}"))
        if self.name == "P5_p64orv301":
            form = stored[:5 * BANDS + 1:8]
            same = sum(f"{tap:.7f}" == f"{value:.7f}"
                       for tap, value in zip(form, ORV301_OF_8_BANDS))
            rows.append(("taps of 8 bands", "41 to 7 decimals", f"{same}", same == 41))
        return rows


FAMILIES = (
    Family("P5_p64orv301", "p5_p64orv301_half", 5,
           {8 * n: value for n, value in enumerate(ORV301_OF_8_BANDS)},
           {"lobe": -73.4, "error": 2e-8, "taps": {320: 0.860848}},
           Knobs(exactness=0.003, slope=1.38), gain=1.000005),
    Family("P4", "p4_half", 4, {255: 0.867240, 256: 0.866940},
           {"lobe": -70.5, "error": 4.5e-8, "taps": {255: 0.867240, 256: 0.866940}},
           Knobs(exactness=3.7, slope=0.3), ("exactness", "slope")),
    Family("P5", "p5_half", 5, {320: 0.853739},
           {"lobe": -80.2, "error": 1.2e-6, "taps": {320: 0.853739}},
           Knobs(exactness=0.02, edge=1.4, slope=2.0, tails=3e-5), ("exactness", "tails")),
)
