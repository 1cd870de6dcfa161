/* Pictures of levels as mvk draws them. */
#ifndef MVK_TESTS_HOST_PICTURE_H
#define MVK_TESTS_HOST_PICTURE_H

#include <cstdint>
#include <string>
#include <vector>

namespace host {

struct Box {
  int left;
  int top;
  int width;
  int height;
};

inline constexpr int kWidth = 1280;
inline constexpr int kHeight = 720;
inline constexpr Box kPlot{80, 70, 1070, 580};
inline constexpr Box kLegend{1180, 70, 18, 580};
inline constexpr Box kTitle{80, 12, 1200, 26};
inline constexpr Box kSubtitle{80, 42, 1200, 18};

struct Colour {
  int red;
  int green;
  int blue;

  int brightness() const { return red + green + blue; }
  bool operator==(const Colour &) const = default;
};

inline constexpr Colour kPaper{255, 255, 255};

class Picture {
 public:
  explicit Picture(const std::string &path);

  int width() const { return width_; }
  int height() const { return height_; }

  Colour at(int x, int y) const;
  bool blank(const Box &box) const;

  /* A row of the plot from the bottom, and a column from the left. */
  Colour plot(int column, int row) const {
    return at(kPlot.left + column, kPlot.top + kPlot.height - 1 - row);
  }

  /* The colour of a level by the legend, whose 100 dB end with `top`. A pixel of it is a
   * sixth of a decibel, in which no part changes by more than 1. */
  Colour legend(double level, double top) const;

  /* The rows of the brightest pixels in a column of the plot. */
  std::vector<int> brightest_rows(int column) const;

 private:
  int width_ = 0;
  int height_ = 0;
  std::vector<uint32_t> pixels_;
};

/* A colour that may be a pixel of the legend off. */
void expect_near(const Colour &seen, const Colour &expected);

}  // namespace host

#endif
