#include "choice.h"

#include "messages.h"

namespace mvk {

std::string listed(std::span<const int> numbers, const std::string &last_word) {
  std::string list;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) list += i + 1 < numbers.size() ? ", " : " " + last_word + " ";
    list += std::to_string(numbers[i]);
  }
  return list;
}

int parse_choice(const std::string &option, const std::string &text, std::span<const int> choices,
                 const std::string &unit) {
  for (const int choice : choices) {
    if (text == std::to_string(choice)) return choice;
  }
  refuse(option + " '" + text + "' isn't one of " + listed(choices) + " " + unit);
}

}  // namespace mvk
