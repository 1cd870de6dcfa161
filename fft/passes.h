// The passes of a transform by decimation in time.
//
// With L the product of the radices so far, the data after a pass are N / L rows: row r is
// the transform of x[r], x[r + N/L], x[r + 2 N/L] and so on, L points in the order of their
// bins. A pass of radix R makes each row of L out of R rows of M = L / R,
//
//     X[r][k + p M] = sum over q of exp(-2 pi j p q / R) W^(q k) A[r + q N/L][k].
//
// A vector holds consecutive bins k, so that all passes but the first and last move whole
// registers; the first transposes as it stores, and the last interleaves.
#pragma once

#include <algorithm>
#include <cstddef>

#include "fft/butterflies.h"
#include "fft/twiddles.h"
#include "fft/work_area.h"

namespace mvk {

// ---- The first pass -----------------------------------------------------------

// Stores rows of R bins, R not a multiple of 4, as pairs. The rows stand in the lanes of y, in
// split order.
template <int R, class V>
MVK_INLINE void store_rows_of_pairs(float *to, cpx<V> (&y)[R]) {
  constexpr int n = lanes<V>, half = n / 2;
  // Bin p of all rows, in their order.
  halves<V> bin[R];
  unrolled<R>([&](auto p) { bin[p] = join_pairs(y[p].re, y[p].im); });
  const auto place = [to](int row, int p) { return to + 2 * (row * R + p); };
  // Bins p and p + 1 of half the rows, the first one being `row`.
  const auto store_two_bins = [&](int row, int p, V a, V b) MVK_INLINED_LAMBDA {
    const halves<V> z = interleave_pairs(a, b);
    if constexpr (n == 4) {
      store(place(row, p), z.lo);
      store(place(row + 1, p), z.hi);
    } else {
      store(place(row, p), lower(z.lo));
      store(place(row + 1, p), lower(z.hi));
      store(place(row + 2, p), upper(z.lo));
      store(place(row + 3, p), upper(z.hi));
    }
  };
  unrolled<R / 2>([&](auto i) {
    constexpr int p = 2 * i;
    store_two_bins(0, p, bin[p].lo, bin[p + 1].lo);
    store_two_bins(half, p, bin[p].hi, bin[p + 1].hi);
  });
  if constexpr (R % 2 == 1) {
    float last[2 * n];
    store(last, bin[R - 1].lo);
    store(last + n, bin[R - 1].hi);
    for (int row = 0; row < n; ++row) std::copy_n(last + 2 * row, 2, place(row, R - 1));
  }
}

// Stores the rows of R bins whose transforms stand in the lanes of y, lane l being row
// r + split_lane<V>[l].
template <int R, int G, bool split, class V>
MVK_INLINE void store_rows(float *work, std::size_t r, cpx<V> (&y)[R]) {
  constexpr int n = lanes<V>;
  // Where in its group an element stands, and the other way round.
  constexpr auto place = [](int p) { return split ? split_lane<f32x8>[p] : p; };
  const auto row = [r](int l) { return (r + split_lane<V>[l]) * R; };
  if constexpr (n == 1) {
    unrolled<R>([&](auto p) { store_elements<G>(work, r * R + place(p), y[p]); });
  } else if constexpr (n == 8 && R == 8) {
    // Half a row at a time.
    unrolled<2>([&](auto half) {
      V re[4], im[4];
      unrolled<4>([&](auto i) {
        constexpr int p = place(4 * half + i);
        re[i] = y[p].re, im[i] = y[p].im;
      });
      transpose_fours(re);
      transpose_fours(im);
      unrolled<4>([&](auto l) {
        float *const lo = work + 2 * row(l) + 4 * half;
        float *const hi = work + 2 * row(l + 4) + 4 * half;
        store(lo, lower(re[l]));
        store(lo + 8, lower(im[l]));
        store(hi, upper(re[l]));
        store(hi + 8, upper(im[l]));
      });
    });
  } else if constexpr (R % 4 == 0) {
    unrolled<R / 4>([&](auto block) {
      constexpr int p = 4 * block;
      V re[4], im[4];
      unrolled<4>([&](auto i) { re[i] = y[place(p + i)].re, im[i] = y[place(p + i)].im; });
      transpose_fours(re);
      transpose_fours(im);
      unrolled<4>([&](auto l) {
        // Groups of two rows have every second one, as lanes l and l + 4 of eight do.
        if constexpr (n == 4 && R == 4 && G == 8) {
          store_elements<G>(work, r * R + 8 * (l % 2) + 4 * (l / 2), cpx<V>{re[l], im[l]});
        } else if constexpr (n == 4) {
          store_elements<G>(work, row(l) + p, cpx<V>{re[l], im[l]});
        } else if constexpr (G == 8) {
          store_elements<G>(work, r * R + 8 * l, cpx<V>{re[l], im[l]});
        } else {
          store_elements<G>(work, row(l) + p, cpx{lower(re[l]), lower(im[l])});
          store_elements<G>(work, row(l + 4) + p, cpx{upper(re[l]), upper(im[l])});
        }
      });
    });
  } else {
    store_rows_of_pairs(work + 2 * r * R, y);
  }
}

// The transform of x, scaled or not, of a transform that runs on exchanged parts if it is an
// inverse one. An inverse radix 8 is computed forward, on parts as they are: its bins are those
// of the forward transform in the opposite order, and are exchanged then. `alone`: there is no
// other pass.
template <bool inverse, bool scaled, bool alone, int R, class V>
MVK_INLINE void transform_inputs(const cpx<V> (&x)[R], float scale, cpx<V> (&y)[R]) {
  constexpr int first_half = (R + 1) / 2;
  constexpr bool mirrors = inverse && R == 8;
  const V s = scale;
  cpx<std::conditional_t<scaled, unscaled<V>, V>> a[first_half];
  cpx<V> b[R - first_half], z[R];
  unrolled<R>([&](auto m) {
    const V re = inverse && !mirrors ? x[m].im : x[m].re;
    const V im = inverse && !mirrors ? x[m].re : x[m].im;
    if constexpr (m >= first_half) {
      b[m - first_half].re = scaled ? re * s : re;
      b[m - first_half].im = scaled ? im * s : im;
    } else if constexpr (scaled) {
      a[m] = {{re, s}, {im, s}};
    } else {
      a[m].re = re;
      a[m].im = im;
    }
  });
  if constexpr (alone && R == 4)
    four_points(a, b, z);
  else
    butterfly(a, b, z);
  unrolled<R>([&](auto p) {
    y[p].re = mirrors ? z[(R - p) % R].im : z[p].re;
    y[p].im = mirrors ? z[(R - p) % R].re : z[p].im;
  });
}

// Rows of R bins out of the n input pairs at src. Last rows that don't fill a vector, or half of
// one, fill it with rows that are made once more: that is quicker than a loop for them, and the
// inputs still stand.
template <int R, bool inverse, bool scaled, class V, int G, bool split>
[[gnu::noinline]] void first_pass(float *work, const float *src, std::size_t n, float scale) {
  const std::size_t rows = n / R;
  const auto make_rows = [=]<class W>(std::size_t r, W) MVK_INLINED_LAMBDA {
    cpx<W> x[R], y[R];
    unrolled<R>([&](auto m) {
      const halves<W> z = load_split_pairs<W>(src + 2 * (r + m * rows));
      x[m].re = z.lo;
      x[m].im = z.hi;
    });
    transform_inputs<inverse, scaled, false>(x, scale, y);
    store_rows<R, G, split>(work, r, y);
  };
  std::size_t r = 0;
  for (; r + lanes<V> <= rows; r += lanes<V>) make_rows(r, V{});
  if (r == rows) return;
  if (lanes<V> == 8 && rows - r <= 4)
    make_rows(rows - 4, f32x4{});
  else
    make_rows(rows - lanes<V>, V{});
}

// The same with a pointer to each input, which move on.
template <int R, bool inverse, bool scaled, class V, int G, bool split>
requires(pointers_move_on &&R % 4 == 0 && lanes<V> == 4 && G == 4)
    [[gnu::noinline]] void first_pass(float *work, const float *src, std::size_t n, float scale) {
  const std::size_t rows = n / R;
  const float *from[R];
  float *to;
  const auto begin_at = [&](std::size_t r) MVK_INLINED_LAMBDA {
    unrolled<R>([&](auto m) MVK_INLINED_LAMBDA { from[m] = src + 2 * (r + m * rows); });
    to = work + 2 * R * r;
  };
  const auto make_rows = [&]() MVK_INLINED_LAMBDA {
    cpx<V> x[R], y[R];
    unrolled<R>([&](auto m) MVK_INLINED_LAMBDA {
      const halves<V> z = load_split_next<V>(from[m]);
      x[m].re = z.lo;
      x[m].im = z.hi;
    });
    transform_inputs<inverse, scaled, false>(x, scale, y);
    V re[R / 4][4], im[R / 4][4];
    unrolled<R>([&](auto p) MVK_INLINED_LAMBDA {
      re[p / 4][p % 4] = y[p].re;
      im[p / 4][p % 4] = y[p].im;
    });
    unrolled<R / 4>([&](auto quad) MVK_INLINED_LAMBDA {
      transpose_fours(re[quad]);
      transpose_fours(im[quad]);
    });
    unrolled<R>([&](auto i) MVK_INLINED_LAMBDA {
      constexpr int row = i / (R / 4), quad = i % (R / 4);
      store_next(to, re[quad][row], im[quad][row]);
    });
  };
  begin_at(0);
  for (std::size_t r = 0; r + 4 <= rows; r += 4) make_rows();
  if (rows % 4 != 0) {
    begin_at(rows - 4);
    make_rows();
  }
}

// ---- Later passes -------------------------------------------------------------

// Radix 4 with the twiddle products finished first; bin 0 isn't multiplied, so that its zeros
// keep their signs, and infinities don't turn into NaNs. `twice`: vectors hold two bins 0.
template <bool twice>
struct radix4_middle {
  static constexpr int radix = 4, twiddles = 3;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[4]) {
    run(a, w, y, [](V, V t) MVK_INLINED_LAMBDA { return t; });
  }

  // For vectors that begin with bin 0.
  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply_first(const Operands &a, const Twiddles &w, cpx<V> (&y)[4]) {
    run(a, w, y, [](V x, V t) MVK_INLINED_LAMBDA {
      if constexpr (twice)
        return with_lanes04(x, t);
      else
        return with_lane0(x, t);
    });
  }

 private:
  template <class V, class Operands, class Twiddles, class Choose>
  MVK_INLINE static void run(const Operands &a, const Twiddles &w, cpx<V> (&y)[4], Choose choose) {
    cpx<V> b[4];
    unrolled<3>([&](auto i) MVK_INLINED_LAMBDA {
      constexpr int q = i + 1;
      const cpx<V> x = a(q), t = turned_middle(x, w(q));
      b[q].re = choose(x.re, t.re);
      b[q].im = choose(x.im, t.im);
    });
    butterfly({a(0), b[1]}, {b[2], b[3]}, y);
  }
};

template <class Butterfly, class V, class Operands, class Twiddles>
MVK_INLINE void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[Butterfly::radix],
                      bool bin_0) {
  if constexpr (requires { Butterfly::apply_first(a, w, y); }) {
    if (bin_0) return Butterfly::apply_first(a, w, y);
  }
  Butterfly::apply(a, w, y);
}

// Of `width` lanes.
template <int width>
struct vector_of;
template <>
struct vector_of<1> {
  using type = float;
};
template <>
struct vector_of<4> {
  using type = f32x4;
};
template <>
struct vector_of<8> {
  using type = f32x8;
};

// Makes `rows` rows out of rows of M, in groups of In and Out, by vectors of `width` lanes. In
// place where rows is 1 and the vectors are whole groups.
template <class Butterfly, int In, int Out, int width, bool split, bool exchange>
requires(!pointers_move_on || In != width)
    [[gnu::noinline]] void later_pass(float *out, const float *in, const float *twiddles,
                                      std::size_t M, std::size_t rows) {
  using V = typename vector_of<width>::type;
  constexpr int R = Butterfly::radix;
  const auto step = [=](std::size_t r, std::size_t k, bool bin_0) MVK_INLINED_LAMBDA {
    cpx<V> y[R];
    apply<Butterfly>(
        [=](int q) MVK_INLINED_LAMBDA { return load_elements<V, In>(in, (r + q * rows) * M + k); },
        grouped_twiddles<V>{twiddles + 2 * Butterfly::twiddles * k}, y, bin_0);
    unrolled<R>([&](auto p) {
      const std::size_t e = (r * R + p) * M + k;
      if constexpr (Out == 1 && split)
        store_split(out, e, exchanged_if<exchange>(y[p]));
      else
        store_elements<Out>(out, e, exchanged_if<exchange>(y[p]));
    });
  };
  for (std::size_t r = 0; r < rows; ++r) {
    step(r, 0, true);
    for (std::size_t k = width; k < M; k += width) step(r, k, false);
  }
}

// The same with a pointer to each operand and each bin, which move on. Operands are read through
// all rows without a break.
template <class Butterfly, int In, int Out, int width, bool split, bool exchange>
requires(pointers_move_on &&In == width)
    [[gnu::noinline]] void later_pass(float *out, const float *in, const float *twiddles,
                                      std::size_t M, std::size_t rows) {
  static_assert(!split && (Out == 1 || Out == In));
  using V = typename vector_of<width>::type;
  constexpr int R = Butterfly::radix;
  const float *from[R];
  float *to[R];
  unrolled<R>([&](auto q) MVK_INLINED_LAMBDA {
    from[q] = in + 2 * q * rows * M;
    to[q] = out + 2 * q * M;
  });
  const auto step = [&](const float *w, bool bin_0) MVK_INLINED_LAMBDA {
    cpx<V> y[R];
    apply<Butterfly>(
        [&](int q) MVK_INLINED_LAMBDA {
          const halves<V> a = load_next<V>(from[q]);
          return cpx<V>{a.lo, a.hi};
        },
        grouped_twiddles<V>{w}, y, bin_0);
    unrolled<R>([&](auto p) MVK_INLINED_LAMBDA {
      const V re = exchange ? y[p].im : y[p].re, im = exchange ? y[p].re : y[p].im;
      if constexpr (Out == 1)
        store_interleaved_next(to[p], re, im);
      else
        store_next(to[p], re, im);
    });
  };
  constexpr std::size_t twiddle_step = 2 * Butterfly::twiddles * width;
  const float *const end = twiddles + 2 * Butterfly::twiddles * M;
  do {
    step(twiddles, true);
    for (const float *w = twiddles + twiddle_step; w != end; w += twiddle_step) step(w, false);
    unrolled<R>([&](auto p) MVK_INLINED_LAMBDA { to[p] += 2 * (R - 1) * M; });
  } while (--rows);
}

// The same for M of at least 4 that isn't a multiple of it, on pairs and plain twiddles. The last
// bins fill a vector together with some before them: they are read ahead of those, which may be
// in place, and written behind them.
template <class Butterfly, bool exchange>
[[gnu::noinline]] void later_pass_of_pairs(float *out, const float *in, const float *twiddles,
                                           std::size_t M, std::size_t rows) {
  constexpr int R = Butterfly::radix;
  const auto make_rows = [=]<class V>(V) MVK_INLINED_LAMBDA {
    const auto make_bins = [=](std::size_t r, std::size_t k, cpx<V>(&y)[R]) MVK_INLINED_LAMBDA {
      Butterfly::apply(
          [=](int q) MVK_INLINED_LAMBDA { return load_elements<V, 1>(in, (r + q * rows) * M + k); },
          plain_twiddles<V>{twiddles + k, M}, y);
    };
    const auto store_bins = [=](std::size_t r, std::size_t k, cpx<V>(&y)[R]) MVK_INLINED_LAMBDA {
      unrolled<R>([&](auto p) {
        store_elements<1>(out, (r * R + p) * M + k, exchanged_if<exchange>(y[p]));
      });
    };
    const std::size_t last = M - lanes<V>;
    for (std::size_t r = 0; r < rows; ++r) {
      cpx<V> y[R], end[R];
      make_bins(r, last, end);
      for (std::size_t k = 0; k < last; k += lanes<V>) {
        make_bins(r, k, y);
        store_bins(r, k, y);
      }
      store_bins(r, last, end);
    }
  };
  if (M >= lanes<native>)
    make_rows(native{});
  else
    make_rows(f32x4{});
}

// The same for M = 4 on eight lanes, two rows at a time as the first pass has left them.
template <class Butterfly, int Out>
[[gnu::noinline]] void second_pass_of_twos(float *out, const float *in, const float *twiddles,
                                           std::size_t rows) {
  using V = f32x8;
  constexpr int R = Butterfly::radix;
  const grouped_twiddles<V> w{twiddles};
  for (std::size_t pair = 0; pair < rows / 2; ++pair) {
    cpx<V> y[R];
    apply<Butterfly>(
        [=](int q)
            MVK_INLINED_LAMBDA { return load_elements<V, 8>(in, 8 * (pair + q * (rows / 2))); },
        w, y, true);
    const std::size_t row[2] = {pair / 2 * 4 + pair % 2, pair / 2 * 4 + pair % 2 + 2};
    if constexpr (Out == 8) {
      unrolled<R / 2>([&](auto i) {
        const cpx<V> z0 = y[2 * i], z1 = y[2 * i + 1];
        store_elements<8>(out, row[0] * 4 * R + 8 * i,
                          cpx{both(lower(z0.re), lower(z1.re)), both(lower(z0.im), lower(z1.im))});
        store_elements<8>(out, row[1] * 4 * R + 8 * i,
                          cpx{both(upper(z0.re), upper(z1.re)), both(upper(z0.im), upper(z1.im))});
      });
    } else {
      unrolled<R>([&](auto p) {
        store(out + 2 * (row[0] * R + p) * 4, both(lower(y[p].re), lower(y[p].im)));
        store(out + 2 * (row[1] * R + p) * 4, both(upper(y[p].re), upper(y[p].im)));
      });
    }
  }
}

}  // namespace mvk
