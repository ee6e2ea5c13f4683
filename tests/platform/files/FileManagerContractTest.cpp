#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "tests/platform/files/FileWorld.h"

namespace tavrin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using Intermediates = FileManager::IntermediateDirectories;

/// A changing operation, given two absolute paths; those with one path use the first.
struct Operation {
  const char* name;
  std::function<Status(FileManager&, const std::string&, const std::string&)> run;
};

Status asStatus(const auto& result) {
  return result ? success() : Status(result.error());
}

const std::array<Operation, 9> operations = {{
    {"list", [](auto& files, auto& path,
                auto&) { return asStatus(files.contentsOfDirectoryAtPath(path)); }},
    {"read", [](auto& files, auto& path, auto&) { return asStatus(files.contentsAtPath(path)); }},
    {"copy",
     [](auto& files, auto& path, auto& other) { return files.copyItemAtPath(path, other); }},
    {"copy replacing", [](auto& files, auto& path,
                          auto& other) { return files.copyFileReplacingAtPath(path, other); }},
    {"move",
     [](auto& files, auto& path, auto& other) { return files.moveItemAtPath(path, other); }},
    {"hide",
     [](auto& files, auto& path, auto&) { return files.setHiddenAtPath(path, IsHidden::Yes); }},
    {"remove", [](auto& files, auto& path, auto&) { return files.removeItemAtPath(path); }},
    {"create file",
     [](auto& files, auto&, auto& other) {
       return files.createFileAtPath(other, bytesOf("new"), FileManager::Replace::No);
     }},
    {"create folder",
     [](auto& files, auto&, auto& other) {
       return files.createDirectoryAtPath(other, Intermediates::Create);
     }},
}};

class FileManagerContract : public ::testing::TestWithParam<Implementation> {
 protected:
  FileManager& files() { return world_->files(); }
  std::string at(std::string_view path) const { return world_->at(path); }

  /// Runs every operation on the two absolute paths and expects each to fail with `cause` and to
  /// change nothing.
  void expectRefused(const std::string& path, const std::string& other, std::errc cause) {
    const auto before = world_->snapshot();
    for (const Operation& operation : operations) {
      const Status status = operation.run(files(), path, other);
      ASSERT_FALSE(status) << operation.name << " " << path << " " << other;
      EXPECT_EQ(status.error().code, cause) << operation.name << ": " << status.error().describe();
    }
    EXPECT_EQ(world_->snapshot(), before);
  }

  static void expectFailure(const Status& status, std::errc cause) {
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, cause) << status.error().describe();
  }

  std::unique_ptr<FileWorld> world_ = GetParam().make();
};

TEST_P(FileManagerContract, AnswersWhatStandsAtAPathWithoutAScope) {
  world_->addFile("folder/file", "text");
  world_->addSymlink("dangling", "nowhere");
  world_->addSymlink("link", "folder");
  world_->addSymlink("circle", "circle");
  for (const char* path :
       {"", "folder", "folder/file", "dangling", "link", "link/file", "circle"}) {
    EXPECT_TRUE(files().fileExistsAtPath(at(path))) << path;
  }
  for (const char* path : {"missing", "folder/file/below", "dangling/below", "circle/below"}) {
    EXPECT_FALSE(files().fileExistsAtPath(at(path))) << path;
    EXPECT_FALSE(files().isDirectoryAtPath(at(path))) << path;
  }
  EXPECT_FALSE(files().fileExistsAtPath("relative"));
  EXPECT_FALSE(files().fileExistsAtPath(""));
  EXPECT_FALSE(files().isDirectoryAtPath(""));
  EXPECT_FALSE(files().fileExistsAtPath(at("folder") + std::string("\0x", 2)));
  EXPECT_TRUE(files().isDirectoryAtPath(at("link")));
  EXPECT_TRUE(files().isDirectoryAtPath("/"));
  EXPECT_FALSE(files().isDirectoryAtPath(at("folder/file")));
  EXPECT_FALSE(files().isDirectoryAtPath(at("dangling")));
}

TEST_P(FileManagerContract, ResolvesSymbolicLinksAsFarAsComponentsExist) {
  world_->addFile("folder/sub/file", "");
  world_->addSymlink("relative", "folder/../folder/sub");
  world_->addSymlink("absolute", at("relative"));
  world_->addSymlink("dangling", "folder/none");
  world_->addSymlink("circle", "other");
  world_->addSymlink("other", "circle");
  const std::array<std::pair<const char*, const char*>, 9> cases = {{
      {"absolute/file", "folder/sub/file"},
      {"absolute/../sub", "folder/sub"},
      {"relative/./missing/../rest", "folder/sub/missing/../rest"},
      {"dangling/below", "folder/none/below"},
      {"circle/below", "circle/below"},
      {"folder/sub/file/below", "folder/sub/file/below"},
      {"folder//sub/", "folder/sub"},
      {"missing", "missing"},
      {"", ""},
  }};
  for (const auto& [path, resolved] : cases) {
    EXPECT_EQ(files().resolvingSymlinksInPath(at(path)), at(resolved)) << path;
  }
  EXPECT_EQ(files().resolvingSymlinksInPath("relative/path"), "relative/path");
  EXPECT_EQ(files().resolvingSymlinksInPath("/../.."), "/");
}

TEST_P(FileManagerContract, RefusesEverythingWithoutAScope) {
  world_->addFile("folder/file", "text");
  expectRefused(at("folder"), at("folder/new"), std::errc::permission_denied);
  expectRefused(at("folder/file"), at("new"), std::errc::permission_denied);
  expectRefused(at("missing/file"), at("missing/deep/new"), std::errc::permission_denied);
}

TEST_P(FileManagerContract, WorksBelowAPickedFolder) {
  world_->addFile("grant/folder/file", "text");
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_TRUE(
      files().createFileAtPath(at("grant/created"), bytesOf("bytes"), FileManager::Replace::No));
  EXPECT_TRUE(files().createDirectoryAtPath(at("grant/made"), Intermediates::No));
  EXPECT_TRUE(files().copyItemAtPath(at("grant/folder"), at("grant/made/copy")));
  EXPECT_TRUE(files().moveItemAtPath(at("grant/folder/file"), at("grant/moved")));
  EXPECT_TRUE(files().removeItemAtPath(at("grant/folder")));
  EXPECT_EQ(textOf(files().contentsAtPath(at("grant/moved"))), "text");
  EXPECT_THAT(files().contentsOfDirectoryAtPath(at("grant")).value(),
              UnorderedElementsAre("created", "made", "moved"));
  EXPECT_THAT(world_->snapshot(),
              ElementsAre("grant", "grant/created=bytes", "grant/made", "grant/made/copy",
                          "grant/made/copy/file=text", "grant/moved=text"));
}

TEST_P(FileManagerContract, ReplacesNothing) {
  for (const char* path : {"grant/source", "grant/file", "grant/folder/inside"}) {
    world_->addFile(path, path);
  }
  world_->addSymlink("grant/dangling", "nowhere");
  ASSERT_TRUE(world_->pick(at("grant")));
  const auto before = world_->snapshot();
  for (const char* name : {"grant/file", "grant/folder", "grant/dangling"}) {
    const std::string taken = at(name);
    expectFailure(files().copyItemAtPath(at("grant/source"), taken), std::errc::file_exists);
    expectFailure(files().moveItemAtPath(at("grant/source"), taken), std::errc::file_exists);
    expectFailure(files().createFileAtPath(taken, {}, FileManager::Replace::No),
                  std::errc::file_exists);
    expectFailure(files().createDirectoryAtPath(taken, Intermediates::No), std::errc::file_exists);
  }
  expectFailure(files().createDirectoryAtPath(at("grant/file"), Intermediates::Create),
                std::errc::file_exists);
  expectFailure(files().createDirectoryAtPath(at("grant/dangling"), Intermediates::Create),
                std::errc::file_exists);
  EXPECT_EQ(world_->snapshot(), before);
}

TEST_P(FileManagerContract, ReplacesAFileWhereItIsTold) {
  constexpr auto yes = FileManager::Replace::Yes;
  world_->addFile("grant/file", "old");
  world_->addFile("grant/target", "target");
  world_->addSymlink("grant/link", "target");
  world_->addFile("grant/folder/inside", "inside");
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_TRUE(files().createFileAtPath(at("grant/file"), bytesOf("new"), yes));
  EXPECT_TRUE(files().createFileAtPath(at("grant/link"), bytesOf("no link"), yes));
  EXPECT_TRUE(files().createFileAtPath(at("grant/free"), {}, yes));
  expectFailure(files().createFileAtPath(at("grant/folder"), {}, yes), std::errc::is_a_directory);
  EXPECT_THAT(world_->snapshot(),
              ElementsAre("grant", "grant/file=new", "grant/folder", "grant/folder/inside=inside",
                          "grant/free=", "grant/link=no link", "grant/target=target"));
}

TEST_P(FileManagerContract, CopiesAFileInThePlaceOfAnother) {
  for (const char* path : {"grant/file", "grant/source", "grant/folder/inside", "outside/secret"}) {
    world_->addFile(path, path);
  }
  world_->addSymlink("grant/link", "file");
  world_->addSymlink("grant/to folder", "folder");
  ASSERT_TRUE(world_->pick(at("grant")));
  const std::string source = at("grant/source");
  EXPECT_TRUE(files().copyFileReplacingAtPath(source, at("grant/folder/inside")));
  EXPECT_TRUE(files().copyFileReplacingAtPath(source, at("grant/to folder")));
  EXPECT_TRUE(files().copyFileReplacingAtPath(source, at("grant/free")));
  EXPECT_TRUE(files().copyFileReplacingAtPath(source, source));
  const auto before = world_->snapshot();
  EXPECT_THAT(before, ElementsAre("grant", "grant/file=grant/file", "grant/folder",
                                  "grant/folder/inside=grant/source", "grant/free=grant/source",
                                  "grant/link->file", "grant/source=grant/source",
                                  "grant/to folder=grant/source", "outside",
                                  "outside/secret=outside/secret"));
  for (const auto& [from, to, cause] :
       {std::tuple("source", "folder", std::errc::is_a_directory),
        {"folder", "file", std::errc::is_a_directory},
        {"folder", "new", std::errc::is_a_directory},
        {"link", "file", std::errc::too_many_symbolic_link_levels},
        {"missing", "file", std::errc::no_such_file_or_directory},
        {"source", "missing/new", std::errc::no_such_file_or_directory},
        {"source", "../outside/secret", std::errc::permission_denied},
        {"../outside/secret", "file", std::errc::permission_denied}}) {
    SCOPED_TRACE(std::string(from) + " to " + to);
    expectFailure(files().copyFileReplacingAtPath(at("grant/") + from, at("grant/") + to), cause);
  }
  EXPECT_EQ(world_->snapshot(), before);
}

TEST_P(FileManagerContract, APickedPlaceGrantsOneFileOfItsFolder) {
  constexpr auto no = FileManager::Replace::No;
  constexpr auto yes = FileManager::Replace::Yes;
  world_->addFolder("folder/taken by a folder");
  world_->addSymlink("link", "folder");
  ASSERT_TRUE(world_->pickPlace(at("link/new")));
  ASSERT_TRUE(world_->pickPlace(at("folder/taken by a folder")));
  for (const char* other : {"folder/other", "folder", "new", "folder/new/below"}) {
    expectFailure(files().createFileAtPath(at(other), {}, yes), std::errc::permission_denied);
  }
  EXPECT_TRUE(files().createFileAtPath(at("link/new"), bytesOf("1"), no));
  expectFailure(files().createFileAtPath(at("folder/new"), bytesOf("2"), no),
                std::errc::file_exists);
  EXPECT_TRUE(files().createFileAtPath(at("folder/new"), bytesOf("3"), yes));
  expectFailure(files().createFileAtPath(at("folder/taken by a folder"), {}, yes),
                std::errc::is_a_directory);
  expectRefused(at("folder/new"), at("folder/moved"), std::errc::permission_denied);
  expectFailure(files().createDirectoryAtPath(at("folder/new"), Intermediates::Create),
                std::errc::permission_denied);
  EXPECT_FALSE(world_->scopes().startAccessingSecurityScopedResource(
      FileURL::fileURLWithPath(at("folder/new"))));

  world_->renameItem("folder", "moved");
  world_->addFolder("folder");
  expectFailure(files().createFileAtPath(at("folder/new"), {}, yes), std::errc::permission_denied);
  EXPECT_THAT(world_->snapshot(), ElementsAre("folder", "link->folder", "moved", "moved/new=3",
                                              "moved/taken by a folder"));
}

TEST_P(FileManagerContract, PutsNoFolderIntoItself) {
  world_->addFile("grant/folder/sub/file", "");
  ASSERT_TRUE(world_->pick(at("grant")));
  const auto before = world_->snapshot();
  for (const char* name : {"grant/folder/copy", "grant/folder/sub/copy"}) {
    expectFailure(files().copyItemAtPath(at("grant/folder"), at(name)),
                  std::errc::invalid_argument);
    expectFailure(files().moveItemAtPath(at("grant/folder"), at(name)),
                  std::errc::invalid_argument);
  }
  EXPECT_EQ(world_->snapshot(), before);
}

TEST_P(FileManagerContract, TellsWhatIsMissing) {
  world_->addFile("grant/file", "");
  ASSERT_TRUE(world_->pick(at("grant")));
  const auto before = world_->snapshot();
  const std::string target = at("grant/target");
  for (const auto& [path, cause] :
       {std::pair(at("grant/none"), std::errc::no_such_file_or_directory),
        {at("grant/none/x"), std::errc::no_such_file_or_directory},
        {at("grant/file/x"), std::errc::not_a_directory}}) {
    expectFailure(asStatus(files().contentsOfDirectoryAtPath(path)), cause);
    expectFailure(asStatus(files().contentsAtPath(path)), cause);
    expectFailure(files().copyItemAtPath(path, target), cause);
    expectFailure(files().moveItemAtPath(path, target), cause);
    expectFailure(files().removeItemAtPath(path), cause);
    if (path == at("grant/none")) continue;
    expectFailure(files().createFileAtPath(path, {}, FileManager::Replace::No), cause);
    expectFailure(files().copyItemAtPath(at("grant/file"), path), cause);
    expectFailure(files().moveItemAtPath(at("grant/file"), path), cause);
    expectFailure(files().createDirectoryAtPath(path, Intermediates::No), cause);
  }
  expectFailure(files().createDirectoryAtPath(at("grant/file/x"), Intermediates::Create),
                std::errc::not_a_directory);
  EXPECT_EQ(world_->snapshot(), before);
}

TEST_P(FileManagerContract, CreatesMissingParentsOrNothing) {
  world_->addFile("grant/file", "");
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_TRUE(files().createDirectoryAtPath(at("grant/a/b/c"), Intermediates::Create));
  EXPECT_TRUE(files().createDirectoryAtPath(at("grant/a/b"), Intermediates::Create));
  EXPECT_TRUE(files().createDirectoryAtPath(at("grant"), Intermediates::Create));
  const auto before = world_->snapshot();
  EXPECT_THAT(before, ElementsAre("grant", "grant/a", "grant/a/b", "grant/a/b/c", "grant/file="));
  expectFailure(files().createDirectoryAtPath(at("grant/d/e"), Intermediates::No),
                std::errc::no_such_file_or_directory);
  const std::string tooLong(256, 'n');
  expectFailure(files().createDirectoryAtPath(at("grant/d/e/" + tooLong), Intermediates::Create),
                std::errc::filename_too_long);
  EXPECT_EQ(world_->snapshot(), before);
}

TEST_P(FileManagerContract, NeverFollowsALinkAsTheItem) {
  world_->addFile("grant/folder/file", "text");
  world_->addSymlink("grant/link", "folder");
  ASSERT_TRUE(world_->pick(at("grant")));
  const auto listed = files().contentsOfDirectoryAtPath(at("grant/link"));
  ASSERT_FALSE(listed);
  EXPECT_EQ(listed.error().code, std::errc::not_a_directory);
  EXPECT_TRUE(files().copyItemAtPath(at("grant/link"), at("grant/copy")));
  EXPECT_TRUE(files().moveItemAtPath(at("grant/copy"), at("grant/moved")));
  EXPECT_TRUE(files().removeItemAtPath(at("grant/link")));
  EXPECT_THAT(world_->snapshot(), ElementsAre("grant", "grant/folder", "grant/folder/file=text",
                                              "grant/moved->folder"));
}

TEST_P(FileManagerContract, ReadsThroughALinkOnlyWhatIsCovered) {
  world_->addFile("grant/file", "inside");
  world_->addFile("outside/file", "secret");
  world_->addSymlink("grant/in", "file");
  world_->addSymlink("grant/out", "../outside/file");
  world_->addSymlink("grant/circle", "circle");
  world_->addSymlink("outside/link", at("grant/file"));
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_EQ(textOf(files().contentsAtPath(at("grant/in"))), "inside");
  for (const char* name : {"grant/out", "outside/link"}) {
    const auto read = files().contentsAtPath(at(name));
    ASSERT_FALSE(read) << name;
    EXPECT_EQ(read.error().code, std::errc::permission_denied);
  }
  EXPECT_EQ(files().contentsAtPath(at("grant/circle")).error().code,
            std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(files().contentsAtPath(at("grant")).error().code, std::errc::is_a_directory);
}

TEST_P(FileManagerContract, DoesNotLeaveTheGrantByLinksOrDots) {
  world_->addFile("grant/sub/file", "mine");
  world_->addFile("outside/file", "secret");
  world_->addSymlink("grant/exit", "../outside");
  ASSERT_TRUE(world_->pick(at("grant")));
  for (const char* way : {"grant/exit", "grant/sub/../../outside", "grant/exit/../outside"}) {
    expectRefused(at(way) + "/file", at(way) + "/new", std::errc::permission_denied);
  }
  expectFailure(files().moveItemAtPath(at("grant/sub"), at("outside/sub")),
                std::errc::permission_denied);
  expectFailure(files().moveItemAtPath(at("outside/file"), at("grant/file")),
                std::errc::permission_denied);
  expectFailure(files().copyItemAtPath(at("outside/file"), at("grant/file")),
                std::errc::permission_denied);
  EXPECT_THAT(world_->snapshot(),
              ElementsAre("grant", "grant/exit->../outside", "grant/sub", "grant/sub/file=mine",
                          "outside", "outside/file=secret"));
}

TEST_P(FileManagerContract, FindsTheGrantByAnyWayThatLeadsThere) {
  world_->addFile("grant/sub/file", "text");
  world_->addFolder("outside");
  world_->addSymlink("outside/entrance", at("grant"));
  ASSERT_TRUE(world_->pick(at("grant")));
  for (const char* way : {"outside/entrance/sub/file", "outside/../grant/sub/file",
                          "grant//./sub/../sub/file", "outside/entrance/../grant/sub/file"}) {
    EXPECT_EQ(textOf(files().contentsAtPath(at(way))), "text") << way;
  }
  EXPECT_TRUE(files().createDirectoryAtPath(at("outside/entrance/a/b"), Intermediates::Create));
  EXPECT_TRUE(files().moveItemAtPath(at("outside/entrance/sub"), at("grant/a/b/moved")));
  EXPECT_TRUE(files().fileExistsAtPath(at("grant/a/b/moved/file")));
}

TEST_P(FileManagerContract, RefusesPathsThatNameNoItem) {
  world_->addFolder("grant/folder");
  ASSERT_TRUE(world_->pick(at("grant")));
  ASSERT_TRUE(world_->pick("/"));
  for (const std::string& path : {std::string(), std::string("relative"), at("grant/folder/"),
                                  at("grant/folder/."), at("grant/folder/..")}) {
    expectRefused(path, path, std::errc::invalid_argument);
  }
}

TEST_P(FileManagerContract, CoversEverythingWithTheRoot) {
  world_->addFile("folder/file", "text");
  EXPECT_EQ(files().contentsOfDirectoryAtPath("/").error().code, std::errc::permission_denied);
  ASSERT_TRUE(world_->pick("/"));
  EXPECT_TRUE(files().contentsOfDirectoryAtPath("/"));
  EXPECT_EQ(textOf(files().contentsAtPath(at("folder/file"))), "text");
  EXPECT_TRUE(files().moveItemAtPath(at("folder"), at("moved")));
  expectFailure(files().removeItemAtPath("/"), std::errc::invalid_argument);
  expectFailure(files().moveItemAtPath("/", at("root")), std::errc::invalid_argument);
}

TEST_P(FileManagerContract, WorksOnThePickedItemItself) {
  world_->addFile("folder/picked", "text");
  world_->addFile("folder/beside", "other");
  world_->addFolder("grant");
  ASSERT_TRUE(world_->pick(at("folder/picked")));
  ASSERT_TRUE(world_->pick(at("grant")));
  EXPECT_EQ(textOf(files().contentsAtPath(at("folder/picked"))), "text");
  expectRefused(at("folder/beside"), at("folder/new"), std::errc::permission_denied);
  expectFailure(files().moveItemAtPath(at("folder/picked"), at("folder/renamed")),
                std::errc::permission_denied);
  EXPECT_TRUE(files().moveItemAtPath(at("folder/picked"), at("grant/picked")));
  world_->addFile("folder/picked", "another");
  EXPECT_EQ(files().contentsAtPath(at("folder/picked")).error().code, std::errc::permission_denied);
  EXPECT_TRUE(files().removeItemAtPath(at("grant")));
  EXPECT_THAT(world_->snapshot(),
              ElementsAre("folder", "folder/beside=other", "folder/picked=another"));
}

TEST_P(FileManagerContract, CoversNothingOnceTheFolderHasLeftItsPath) {
  world_->addFile("grant/file", "text");
  ASSERT_TRUE(world_->pick(at("grant")));
  world_->renameItem("grant", "renamed");
  expectRefused(at("renamed/file"), at("renamed/new"), std::errc::permission_denied);
  world_->addFile("grant/file", "another's");
  expectRefused(at("grant/file"), at("grant/new"), std::errc::permission_denied);
  world_->discardItem("grant");
  world_->addSymlink("grant", "renamed");
  expectRefused(at("grant/file"), at("grant/new"), std::errc::permission_denied);
  world_->discardItem("grant");
  world_->renameItem("renamed", "grant");
  EXPECT_EQ(textOf(files().contentsAtPath(at("grant/file"))), "text");
}

TEST_P(FileManagerContract, OpensContainersAndReadsResourcesWithoutAGrant) {
  const auto container = files().containerPathForSecurityApplicationGroupIdentifier("group");
  ASSERT_TRUE(container);
  EXPECT_TRUE(files().isDirectoryAtPath(*container));
  EXPECT_EQ(files().containerPathForSecurityApplicationGroupIdentifier("group"), container);
  EXPECT_TRUE(files().copyItemAtPath(world_->resources() + "/icon", *container + "/copy"));
  EXPECT_EQ(textOf(files().contentsAtPath(*container + "/copy")), "icon");
  EXPECT_TRUE(files().contentsOfDirectoryAtPath(world_->resources()));
  EXPECT_TRUE(files().contentsOfDirectoryAtPath(*container));
  const std::string icon = world_->resources() + "/icon";
  expectFailure(files().moveItemAtPath(icon, *container + "/moved"), std::errc::permission_denied);
  expectFailure(files().removeItemAtPath(icon), std::errc::permission_denied);
  expectFailure(
      files().createFileAtPath(world_->resources() + "/new", {}, FileManager::Replace::No),
      std::errc::permission_denied);
  EXPECT_EQ(textOf(files().contentsAtPath(icon)), "icon");
  for (const std::string& identifier : {std::string(), std::string("."), std::string(".."),
                                        std::string("a/b"), std::string("/a")}) {
    EXPECT_FALSE(files().containerPathForSecurityApplicationGroupIdentifier(identifier));
  }
}

TEST_P(FileManagerContract, TakesNamesOfAnyBytes) {
  world_->addFolder("grant");
  ASSERT_TRUE(world_->pick(at("grant")));
  const std::string longest(255, 'x');
  for (const std::string& name : {std::string("-rf *"), std::string("quote'\"\n"),
                                  std::string("\xff\xfe no text"), longest}) {
    const std::string path = at("grant/" + name);
    EXPECT_TRUE(files().createFileAtPath(path, bytesOf(name), FileManager::Replace::No)) << name;
    EXPECT_TRUE(files().copyItemAtPath(path, at("grant/copy"))) << name;
    EXPECT_EQ(textOf(files().contentsAtPath(at("grant/copy"))), name);
    EXPECT_TRUE(files().moveItemAtPath(path, at("grant/moved"))) << name;
    EXPECT_TRUE(files().removeItemAtPath(at("grant/copy")));
    EXPECT_TRUE(files().removeItemAtPath(at("grant/moved")));
  }
  EXPECT_THAT(files().contentsOfDirectoryAtPath(at("grant")).value(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Files, FileManagerContract, ::testing::ValuesIn(implementations),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace tavrin
