#include "ku/path.hpp"

#include <dlfcn.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "testing/files.hpp"

using dialog_test::ScopedEnv;
using dialog_test::TempDir;

namespace {

// No prefixes, user data in an empty place, HOME at `home`.
struct Isolated {
  TempDir home;
  ScopedEnv prefix{"KU_PREFIX_PATH", std::nullopt}, xdg{"XDG_DATA_HOME", std::nullopt};
  ScopedEnv homeEnv{"HOME", home.path()};
};

TEST(FindData, PrefixesInOrderThenUserDataThenNothing) {
  Isolated isolated;
  TempDir first, second, user;
  second.write("share/pkg/a", "second");
  user.write("pkg/a", "user");
  user.write("pkg/u", "user");
  first.write("share/pkg/f", "first");
  second.write("share/pkg/dir/inner", "x");
  isolated.home.write(".local/share/pkg/h", "home");
  // Empty entries are skipped; a trailing "/" gives no doubled one.
  const ScopedEnv prefixes("KU_PREFIX_PATH", "::" + first.path() + "/:" + second.path());
  const auto find = [](const char* path, bool noUser = false) {
    return ku::path::findData("pkg", path, noUser);
  };
  EXPECT_EQ(find("a"), second.path() + "/share/pkg/a");
  EXPECT_EQ(find("f"), first.path() + "/share/pkg/f");
  EXPECT_EQ(find("dir/"), second.path() + "/share/pkg/dir/");          // the "/" is kept
  EXPECT_EQ(find("h"), isolated.home.path() + "/.local/share/pkg/h");  // HOME without XDG
  EXPECT_EQ(find("missing"), "");
  EXPECT_EQ(ku::path::findData("", "a"), "");
  EXPECT_EQ(find(""), "");
  EXPECT_TRUE(ku::path::dataCandidates("pkg", "").empty());
  const ScopedEnv xdg("XDG_DATA_HOME", user.path());
  EXPECT_EQ(find("u"), user.path() + "/pkg/u");
  EXPECT_EQ(find("u", true), "");  // the flag leaves out the user's directory
  EXPECT_EQ(find("h"), "");
  const ScopedEnv empty("XDG_DATA_HOME", "");  // empty counts as unset
  EXPECT_EQ(find("h"), isolated.home.path() + "/.local/share/pkg/h");
  const ScopedEnv noHome("HOME", "");
  EXPECT_EQ(ku::path::dataCandidates("pkg", "h").size(), 2u);  // two prefixes, no user data
}

// A copy of libku installed under a prefix looks in that prefix's share/ last;
// one outside a library directory (like the build tree's) has no prefix.
// (Its own dataCandidates: findData would call the already loaded libku's.)
TEST(FindData, InstalledLibraryLooksInItsOwnPrefix) {
  Isolated isolated;
  TempDir prefix;
  for (const char* libdir : {KU_INSTALL_LIBDIR, "elsewhere"}) {
    const std::string copy = prefix.path() + "/" + libdir + "/libku.so";
    std::filesystem::create_directories(std::filesystem::path(copy).parent_path());
    std::filesystem::copy_file(KU_LIBRARY, copy);
    void* library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    using Candidates = std::vector<std::string> (*)(const std::string&, const std::string&, bool);
    const auto candidates = reinterpret_cast<Candidates>(dlsym(
        library,
        "_ZN2ku4path14dataCandidatesERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES8_b"));
    ASSERT_NE(candidates, nullptr) << dlerror();
    using Strings = std::vector<std::string>;
    const Strings expected =
        std::string(libdir) == "elsewhere" ? Strings{} : Strings{prefix.path() + "/share/pkg/file"};
    EXPECT_EQ(candidates("pkg", "file", true), expected) << libdir;
    const ScopedEnv empty("KU_PREFIX_PATH", "");
    EXPECT_EQ(candidates("pkg", "file", true), expected) << libdir;
    dlclose(library);
  }
  EXPECT_TRUE(ku::path::dataCandidates("pkg", "file", true).empty());  // the build tree's
}

}  // namespace
