// Runs the tests, or prints what the lists hold.
#include <gtest/gtest.h>

#include <iostream>
#include <span>
#include <string_view>

#include "fingerprints/lists.h"

int main(int argc, char **argv) {
  using namespace testing_support;
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (option == "--expected") {
    PrintExpected(std::cout);
  } else if (option == "--open-results") {
    PrintOpenResults(std::cout);
  } else if (option == "--open") {
    PrintOpen(std::cout, std::span<const char *const>(argv + 2, argv + argc));
  } else {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
  }
  return 0;
}
