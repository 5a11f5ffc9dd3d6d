// Tests of the folder that processes share.

#include "companion/BoundedFolder.h"
#include "companion/WholeFile.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::AnyOf;
using testing::Optional;
namespace fs = std::filesystem;

static std::size_t countIn(const fs::path &folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(BoundedFolder, IsMadeWhenSomethingIsKept) {
  const TempFolder folder;
  const BoundedFolder kept(folder.file("a/b"), 1000);
  EXPECT_EQ(kept.find("one", 100), std::nullopt);
  EXPECT_FALSE(folder.has("a"));
  kept.keep("one", "1");
  EXPECT_THAT(kept.find("one", 100), Optional(std::string("1")));
  kept.keep("one", "2");
  EXPECT_THAT(kept.find("one", 100), Optional(std::string("2")));
  EXPECT_EQ(countIn(folder.file("a/b")), 1U);
}

TEST(BoundedFolder, FindsNothingThatIsTooLong) {
  const TempFolder folder;
  const BoundedFolder kept(folder.text(), 1000);
  kept.keep("one", "12345");
  EXPECT_TRUE(kept.find("one", 5));
  EXPECT_FALSE(kept.find("one", 4));
}

TEST(BoundedFolder, RemovesTheOldestFilesBeyondItsLimit) {
  const TempFolder folder;
  const BoundedFolder kept(folder.text(), 1000);
  const auto now = fs::file_time_type::clock::now();
  for (int i = 0; i != 10; ++i) {
    const std::string name = "file" + std::to_string(i);
    EXPECT_TRUE(folder.write(name, std::string(100, 'x')));
    fs::last_write_time(folder.file(name), now - std::chrono::hours(100 - i));
  }
  kept.keep("last", std::string(100, 'x'));
  EXPECT_FALSE(folder.has("file0"));
  EXPECT_FALSE(folder.has("file3"));
  EXPECT_TRUE(folder.has("file4"));
  EXPECT_TRUE(folder.has("file9"));
  EXPECT_TRUE(folder.has("last"));
}

TEST(BoundedFolder, KeepsNothingThatIsLargeForIt) {
  const TempFolder folder;
  const BoundedFolder kept(folder.file("a"), 1000);
  kept.keep("one", std::string(500, 'x'));
  EXPECT_FALSE(folder.has("a"));
}

TEST(BoundedFolder, WithoutANameKeepsNothing) {
  const BoundedFolder kept("", 1000);
  kept.keep("one", "1");
  EXPECT_FALSE(kept.find("one", 100));
}

TEST(BoundedFolder, ThatCannotBeMadeKeepsNothing) {
  const TempFolder folder;
  EXPECT_TRUE(folder.write("file", "text"));
  const BoundedFolder kept(folder.file("file/folder"), 1000);
  kept.keep("one", "1");
  EXPECT_FALSE(kept.find("one", 100));
  EXPECT_EQ(folder.read("file"), "text");
}

#ifdef _WIN32
static constexpr bool onWindows = true;
#else
static constexpr bool onWindows = false;
#endif

TEST(BoundedFolder, MayBeUsedByManyAtATime) {
  const TempFolder folder;
  std::vector<std::thread> threads;
  for (int number = 0; number != 4; ++number)
    threads.emplace_back([&] {
      const BoundedFolder kept(folder.text(), 100000);
      for (int i = 0; i != 50; ++i) {
        kept.keep("shared", std::string(1000, 'a'));
        const auto found = kept.find("shared", 5000);
        // Windows refuses to open a file while another one replaces it.
        if (found || !onWindows) {
          EXPECT_THAT(found, Optional(AnyOf(std::string(1000, 'a'),
                                            std::string(2000, 'b'))));
        }
        kept.keep("shared", std::string(2000, 'b'));
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_THAT(BoundedFolder(folder.text(), 100000).find("shared", 5000),
              Optional(AnyOf(std::string(1000, 'a'), std::string(2000, 'b'))));
  EXPECT_EQ(countIn(folder.path()), 1U);
}

#ifndef _WIN32
TEST(CacheFolder, IsWhereTheUserWantsIt) {
  EnvGuard caches("XDG_CACHE_HOME", "/caches");
  const EnvGuard home("HOME", "/home/me");
  EXPECT_EQ(corvaneCacheFolder("part"), "/caches/corvane/part");
  caches.set("relative");
  EXPECT_EQ(corvaneCacheFolder("part"), "/home/me/.cache/corvane/part");
}

TEST(CacheFolder, IsNowhereForAUserWithoutAHome) {
  const EnvGuard caches("XDG_CACHE_HOME", nullptr);
  EnvGuard home("HOME", nullptr);
  EXPECT_EQ(corvaneCacheFolder("part"), "");
  home.set("relative");
  EXPECT_EQ(corvaneCacheFolder("part"), "");
}
#endif
