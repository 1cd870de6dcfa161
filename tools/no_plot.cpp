/* In place of plot.cpp where cairo isn't installed. */
#include "messages.h"
#include "plot.h"

namespace mvk {

void require_pictures(const std::string &path, const std::string &instead) {
  refuse("this mvk was built without cairo and can't draw " + path + "; " +
         (instead.empty() ? "" : instead + ", or ") + "install libcairo2-dev and build it again");
}

void draw(const HeatMap &, OutputFile &, const std::string &path) { require_pictures(path, ""); }

}  // namespace mvk
