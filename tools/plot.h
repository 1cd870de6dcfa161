/* Pictures of levels over two axes, as PNG files. */
#ifndef MVK_TOOLS_PLOT_H
#define MVK_TOOLS_PLOT_H

#include <cstddef>
#include <string>
#include <vector>

#include "output_file.h"

namespace mvk {

struct Axis {
  enum class Marks { kNumbers, kTimes };  // times are seconds, written as one reads them

  std::string label;  // with the unit; that of times is appended
  double from;
  double to;
  Marks marks = Marks::kNumbers;
};

/* Equal cells along an axis: cell i reaches from first + i size to first + (i + 1) size. */
struct Cells {
  double first;
  double size;
  std::size_t count;
};

/* A level for each cell, which a colour stands for. */
struct HeatMap {
  std::string title;
  std::string subtitle;
  Axis x;
  Axis y;
  Axis scale;  // of the colours
  Cells columns;
  Cells rows;
  std::vector<float> levels;  // column after column, each upwards
};

/* Pixels that the axes have. Where there are more cells, a pixel shows the highest of the
 * levels in it. */
inline constexpr int kPlotWidth = 1070;
inline constexpr int kPlotHeight = 580;

/* Refuses to write `path` if mvk was built without the means to draw. `instead` is what
 * one can do all the same, if anything. */
void require_pictures(const std::string &path, const std::string &instead);

/* Draws into `file`, which isn't committed. `path` is its name for messages. */
void draw(const HeatMap &map, OutputFile &file, const std::string &path);

}  // namespace mvk

#endif
