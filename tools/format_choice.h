/* Which format an output file gets. */
#ifndef MVK_TOOLS_FORMAT_CHOICE_H
#define MVK_TOOLS_FORMAT_CHOICE_H

#include <sndfile.h>

#include <string>

namespace mvk {

/* The SF_FORMAT_... code for audio of the rate and channels of `out`, made from
 * a file of format `source`:
 *
 *   - `wish`, "CONTAINER", "SAMPLES" or "CONTAINER:SAMPLES", counts first;
 *   - then the suffix of `path`, if it is a known one;
 *   - then the source.
 *
 * Samples that weren't wished for by name become the nearest that the container
 * holds. Refuses wishes that can't be fulfilled. */
int choose_format(int source, const std::string &wish, const std::string &path, const SF_INFO &out);

}  // namespace mvk

#endif
