// What mvk info prints.
#include <gtest/gtest.h>

#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

constexpr const char *kInfo = R"(name         AudioResampler
implementor  NXR
short name   Resampler
version      0x00000100

factor  direction  frames in  frames out  latency (output frames)
     1  up               256         256        0
     1  down             256         256        0
     2  up               128         256       27
     2  down             256         128       13
     4  up                64         256       54
     4  down             256          64       13
)";

TEST(Info, ShowsTheNamesAndFiguresOfTheLibraryFoundByItself) {
  const Outcome outcome = run({"info"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, kInfo);
}

TEST(Info, TakesTheLibraryThatIsNamed) {
  const Outcome outcome = run({"info", "--library", library()});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, kInfo);
}

TEST(Info, LibraryThatIsntThereIsAFailure) {
  const Outcome outcome = run({"info", "--library", "./nowhere.so"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err.find("mvk: can't load the library: ./nowhere.so"), 0U) << outcome.err;
}

// A copy of the library with other words at the head of its record.
std::string library_with(const Folder &folder, const std::string &head) {
  std::string bytes = read_bytes(library());
  const std::string own("TLCA\0\1\0\0", 8);
  const auto at = bytes.find(own);
  EXPECT_NE(at, std::string::npos);
  EXPECT_EQ(bytes.find(own, at + 1), std::string::npos);
  write_bytes(folder.file("other.so"), bytes.replace(at, head.size(), head));
  return folder.file("other.so");
}

TEST(Info, RecordOfAnotherTagOrVersionIsAFailure) {
  const Folder folder;
  EXPECT_EQ(run({"info", "--library", library_with(folder, "TLCA")}).exit_code, 0);
  for (const std::string &head : {std::string("TLCB"), std::string("TLCA\0\2", 6)}) {
    const std::string library = library_with(folder, head);
    const Outcome outcome = run({"info", "--library", library});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "mvk: " + library +
                               " isn't a component of version 1.0; name the right library with "
                               "--library PATH\n");
  }
}

TEST(Info, LibraryOfAnotherKindIsAFailure) {
  const Outcome outcome = run({"info", "--library", "libm.so.6"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "mvk: libm.so.6 doesn't export ACLI; name the right library with --library PATH\n");
}

}  // namespace
}  // namespace host
