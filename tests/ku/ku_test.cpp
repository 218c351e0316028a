#include <dlfcn.h>
#include <gtest/gtest.h>
#include <filesystem>
#include "ku/log.hpp"
#include "ku/path.hpp"
#include "testing/files.hpp"

using ZQ::Dialog::testing::ScopedEnv;
using ZQ::Dialog::testing::TempDir;

namespace {

TEST(Log, HandlersGetEveryRecordElseOneLineOnStandardError) {
  ku::log::Category* category = ku::log::addCategory("test.log");
  EXPECT_EQ(category, ku::log::addCategory("test.log"));
  EXPECT_NE(category, ku::log::addCategory("test.other"));
  EXPECT_EQ(category->name + std::to_string(category->level), "test.log4");
  category->level = 0;  // the level test is the caller's
  std::string seen, other;
  const auto show = [](const ku::log::Record& r) {
    return std::to_string(r.level) + r.category + "|" + r.message + "|" + r.file + "|" +
           r.function + "|" + std::to_string(r.line) + ";";
  };
  const unsigned a = ku::log::addHandler([&](const ku::log::Record& r) { seen += show(r); });
  const unsigned b = ku::log::addHandler([&](const ku::log::Record& r) { other += show(r); });
  EXPECT_NE(a, b);
  testing::internal::CaptureStderr();
  ku::log::log(6, category, "hello", "f.cpp", "fn", 12);
  ku::log::removeHandler(b);
  ku::log::removeHandler(b);                              // unknown ids are ignored
  ku::log::log(3, nullptr, "text", nullptr, nullptr, 0);  // null strings arrive empty
  { ku::log::LogStream(2, "g.cpp", "g", 7, category) << "a " << 42; }
  { ku::log::LogStream(3, "", "", 0, std::string("named")) << "x"; }
  ku::log::removeHandler(a);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(seen, "6test.log|hello|f.cpp|fn|12;3|text|||0;2test.log|a 42|g.cpp|g|7;3named|x|||0;");
  EXPECT_EQ(other, "6test.log|hello|f.cpp|fn|12;");
  // With no handler, one line a record on standard error; levels past the named ones: "log".
  const int levels[] = {2, 0, 6, 7, -1};
  const char* const lines[] = {"c: error: m (f.cpp:12)", "silent: m", "c: debug: m", "c: log: m",
                               "c: log: m"};
  for (int i = 0; i < 5; ++i) {
    testing::internal::CaptureStderr();
    ku::log::log(levels[i], levels[i] ? "c" : "", "m", i ? "" : "f.cpp", "fn", 12);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), lines[i] + std::string("\n"));
  }
}
// No prefixes, no user data directory but HOME's.
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
  EXPECT_EQ(find("missing") + find("") + ku::path::findData("", "a"), "");
  const ScopedEnv xdg("XDG_DATA_HOME", user.path());
  EXPECT_EQ(find("u"), user.path() + "/pkg/u");
  EXPECT_EQ(find("u", true) + find("h"), "");  // the flag leaves out the user's directory
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
    using Strings = std::vector<std::string>;
    const auto candidates = reinterpret_cast<
        Strings (*)(const std::string&, const std::string&, bool)>(dlsym(
        library,
        "_ZN2ku4path14dataCandidatesERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES8_b"));
    ASSERT_NE(candidates, nullptr) << dlerror();
    const Strings expected =
        std::string(libdir) == "elsewhere" ? Strings{} : Strings{prefix.path() + "/share/pkg/file"};
    EXPECT_EQ(candidates("pkg", "file", true), expected) << libdir;
    dlclose(library);
  }
  EXPECT_TRUE(ku::path::dataCandidates("pkg", "file", true).empty());  // the build tree's
}

}  // namespace
