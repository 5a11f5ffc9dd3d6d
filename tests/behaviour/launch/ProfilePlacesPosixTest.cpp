// What may lie in the place of a profile, on Posix systems.

#include "tests/behaviour/launch/WithProfile.h"

#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;

namespace {
struct InPlaceOfAProfile : WithProfile {
  /// What is said of the profile at \p place, after its file's name.
  std::string saidOf(const std::string &place, const std::string &file) {
    ErrorCapture capture;
    app = std::make_unique<Application>(Variables{{variable::profile, place}});
    const std::string said = capture.text();
    app.reset();
    const std::string begin = "CV: " + file + " cannot be used as a profile: ";
    const std::string end = ". Kernels run as they are.\n";
    if (said.size() < begin.size() + end.size() || said.find(begin) != 0)
      return said;
    return said.substr(begin.size(), said.size() - begin.size() - end.size());
  }
};
} // namespace

TEST_F(InPlaceOfAProfile, APipeIsNotWaitedFor) {
  const std::string pipe = folder.file("profile.json");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(saidOf(pipe, pipe), "it is no regular file");
  EXPECT_EQ(saidOf(folder.text(), pipe), "it is no regular file");
}

TEST_F(InPlaceOfAProfile, ALinkIsNotFollowed) {
  folder.write("mine", profileText(profile));
  std::filesystem::create_symlink(folder.file("mine"),
                                  folder.file("profile.json"));
  EXPECT_EQ(saidOf(folder.text(), folder.file("profile.json")),
            "it is no regular file");
}

TEST_F(InPlaceOfAProfile, ADeviceIsNotRead) {
  EXPECT_EQ(saidOf("/dev/zero", "/dev/zero"), "it is no regular file");
}

TEST_F(InPlaceOfAProfile, AFileLargerThanAnyProfileIsNotReadToItsEnd) {
  folder.write("profile.json", "{");
  // Nearly all of it is a hole that takes no place.
  std::filesystem::resize_file(folder.file("profile.json"),
                               std::uintmax_t{1} << 40);
  EXPECT_EQ(saidOf(folder.text(), folder.file("profile.json")),
            "it is larger than 256 MiB");
}
