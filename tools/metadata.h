/* What a file says about its audio. */
#ifndef MVK_TOOLS_METADATA_H
#define MVK_TOOLS_METADATA_H

#include <sndfile.h>

namespace mvk {

/* Copies the text tags that both files can hold. To be called before audio is
 * written. */
void carry_tags(SNDFILE *from, SNDFILE *to);

/* Copies the roles of the channels, if `from` gives them. Returns whether they
 * are now in `to`, or there are none. */
bool carry_channel_map(SNDFILE *from, SNDFILE *to, int channels);

}  // namespace mvk

#endif
