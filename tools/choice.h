/* Options that take one of a few numbers. */
#ifndef MVK_TOOLS_CHOICE_H
#define MVK_TOOLS_CHOICE_H

#include <span>
#include <string>

namespace mvk {

/* "8, 16 or 32", or with another last word. */
std::string listed(std::span<const int> numbers, const std::string &last_word = "or");

/* The number among `choices` that `text` is. Refuses any other `option`, listing the
 * choices with their `unit`. */
int parse_choice(const std::string &option, const std::string &text, std::span<const int> choices,
                 const std::string &unit);

}  // namespace mvk

#endif
