#include "ku/path.hpp"

#include <gtest/gtest.h>

#include "testing/files.hpp"

using dialog_test::ScopedEnv;
using dialog_test::TempDir;

namespace {

// Isolates a test from the machine: no prefixes, user data in an empty place.
struct Isolated {
  TempDir home;
  ScopedEnv prefix{"KU_PREFIX_PATH", std::nullopt};
  ScopedEnv xdg{"XDG_DATA_HOME", std::nullopt};
  ScopedEnv homeEnv{"HOME", home.path()};
};

TEST(FindData, SearchesPrefixesInOrderThenUserData) {
  Isolated isolated;
  TempDir first, second, user;
  second.write("share/pkg/a.txt", "second");
  user.write("pkg/a.txt", "user");
  user.write("pkg/only-user.txt", "user");
  first.write("share/pkg/only-first.txt", "first");

  ScopedEnv prefixes("KU_PREFIX_PATH", first.path() + ":" + second.path());
  ScopedEnv xdg("XDG_DATA_HOME", user.path());
  EXPECT_EQ(ku::path::findData("pkg", "a.txt"), second.path() + "/share/pkg/a.txt");
  EXPECT_EQ(ku::path::findData("pkg", "only-first.txt"),
            first.path() + "/share/pkg/only-first.txt");
  EXPECT_EQ(ku::path::findData("pkg", "only-user.txt"), user.path() + "/pkg/only-user.txt");
  // The flag excludes the user's writable directory.
  EXPECT_EQ(ku::path::findData("pkg", "only-user.txt", true), "");
}

TEST(FindData, SkipsEmptyPrefixEntriesAndJoinsWithOneSlash) {
  Isolated isolated;
  TempDir root;
  root.write("share/pkg/file", "x");
  ScopedEnv prefixes("KU_PREFIX_PATH", "::" + root.path() + "/:");
  EXPECT_EQ(ku::path::findData("pkg", "file"), root.path() + "/share/pkg/file");
}

TEST(FindData, UserDataFallsBackToHome) {
  Isolated isolated;
  isolated.home.write(".local/share/pkg/file", "x");
  EXPECT_EQ(ku::path::findData("pkg", "file"), isolated.home.path() + "/.local/share/pkg/file");
  ScopedEnv empty("XDG_DATA_HOME", "");  // an empty variable counts as unset
  EXPECT_EQ(ku::path::findData("pkg", "file"), isolated.home.path() + "/.local/share/pkg/file");
}

TEST(FindData, KeepsTrailingSlashOfDirectories) {
  Isolated isolated;
  TempDir root;
  root.write("share/pkg/dir/inner", "x");
  ScopedEnv prefixes("KU_PREFIX_PATH", root.path());
  EXPECT_EQ(ku::path::findData("pkg", "dir/"), root.path() + "/share/pkg/dir/");
  EXPECT_EQ(ku::path::findData("pkg", "dir"), root.path() + "/share/pkg/dir");
}

TEST(FindData, MissingOrEmptyArgumentsGiveEmpty) {
  Isolated isolated;
  TempDir root;
  root.write("share/pkg/file", "x");
  ScopedEnv prefixes("KU_PREFIX_PATH", root.path());
  EXPECT_EQ(ku::path::findData("pkg", "missing"), "");
  EXPECT_EQ(ku::path::findData("other", "file"), "");
  EXPECT_EQ(ku::path::findData("", "file"), "");
  EXPECT_EQ(ku::path::findData("pkg", ""), "");
  // The uninstalled build tree has no install prefix to fall back on.
  ScopedEnv none("KU_PREFIX_PATH", std::nullopt);
  EXPECT_EQ(ku::path::findData("pkg", "file"), "");
}

}  // namespace
