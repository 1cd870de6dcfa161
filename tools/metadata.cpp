#include "metadata.h"

#include <vector>

namespace mvk {

void carry_tags(SNDFILE *from, SNDFILE *to) {
  for (int tag = SF_STR_FIRST; tag <= SF_STR_LAST; ++tag) {
    const char *text = sf_get_string(from, tag);
    // A container that has no such tag refuses it, and the copy is done without.
    if (text != nullptr && *text != '\0') sf_set_string(to, tag, text);
  }
}

bool carry_channel_map(SNDFILE *from, SNDFILE *to, int channels) {
  std::vector<int> map(static_cast<std::size_t>(channels));
  const int bytes = static_cast<int>(map.size() * sizeof(int));
  if (sf_command(from, SFC_GET_CHANNEL_MAP_INFO, map.data(), bytes) != SF_TRUE) return true;
  return sf_command(to, SFC_SET_CHANNEL_MAP_INFO, map.data(), bytes) == SF_TRUE;
}

}  // namespace mvk
