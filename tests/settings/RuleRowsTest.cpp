#include <gtest/gtest.h>

#include "settings/RowOptions.h"
#include "settings/RuleRows.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

using Record = PropertyList::Dictionary;

class RuleRowsTest : public testing::Test {
 protected:
  RuleRowsTest() {
    system_.bundle.translations = {{"Plain Text", "Nur Text"}, {"Downloads", "Herunterladungen"}};
    for (const char* image : {"Cut.png", "Snapvane.png"}) {
      system_.bundle.resources[image] = std::string("/images/") + image;
    }
  }

  RuleCell cell(RuleList list, const char* identifier, const PropertyList& record) {
    for (const RuleColumn& column : columnsOfRuleList(list)) {
      if (std::string(column.identifier) == identifier) return rows().cell(list, column, record);
    }
    ADD_FAILURE() << "no column " << identifier;
    return {};
  }

  RuleRows& rows() {
    if (!rows_) rows_ = std::make_unique<RuleRows>(system_.platform);
    return *rows_;
  }

  FakePlatform system_;
  std::unique_ptr<RuleRows> rows_;
};

TEST_F(RuleRowsTest, titlesAreLocalisedUntilTheUserHasGivenOne) {
  struct Title {
    RuleList list;
    const char* column;
    const char* ownTitleField;
  };
  for (const auto& [list, column, field] :
       {Title{RuleList::CreateNewFile, "NewFileDisplayName", "modified"},
        Title{RuleList::CustomIcon, "CustomIconName", "modified"},
        Title{RuleList::Others, "OthersDisplayName", "nameModified"}}) {
    SCOPED_TRACE(column);
    Record record{{"displayName", "Plain Text"}};
    EXPECT_EQ(cell(list, column, record).text, "Nur Text");
    record.insert_or_assign(field, "1");
    EXPECT_EQ(cell(list, column, record).text, "Plain Text");
    EXPECT_EQ(cell(list, column, record).editingIdentifier, column);
  }
}

TEST_F(RuleRowsTest, foldersAreShownByTheirOwnTitleOrTheFoldersName) {
  for (const auto& [list, column, identifier] :
       {std::tuple{RuleList::CopyFilesTo, "DisplayName", "Note"},
        std::tuple{RuleList::CommonPath, "commonPathDisplayName", "commonPathDisplayName"}}) {
    const auto title = [&, list = list, column = column](const char* displayName,
                                                         const char* path) {
      return cell(list, column, Record{{"displayName", displayName}, {"realPath", path}});
    };
    EXPECT_EQ(title("Mine", "~/Downloads").text, "Mine");
    EXPECT_EQ(title("", "~/Downloads").text, "Herunterladungen");
    EXPECT_EQ(title("", "/srv/data").text, "data");
    EXPECT_EQ(title("", "/srv/data").editingIdentifier, identifier);
    const auto path = [&, list = list](const char* realPath) {
      return cell(list, "realPath", Record{{"realPath", realPath}});
    };
    EXPECT_EQ(path("~/Downloads").text, "~/Downloads");
    EXPECT_EQ(path("/home/ada/a").text, "~/a");
    EXPECT_EQ(path("/mnt/home/ada/home/ada").text, "/mnt~~") << "every occurrence";
    EXPECT_EQ(path("Undefined").editingIdentifier, "");
  }
}

TEST_F(RuleRowsTest, iconsComeFromWhereTheirListKeepsThem) {
  const RuleCell file = cell(RuleList::CreateNewFile, "NewFileIcon",
                             Record{{"displayName", "Plain Text"}, {"extension", "txt"}});
  const auto& image = std::get<row_icon::ImageFile>(file.icon);
  EXPECT_TRUE(image.path.ends_with("/Templates/CreateNewFile/txt.png")) << image.path;
  EXPECT_TRUE(image.standIn.ends_with("/Templates/CreateNewFile/Plain Text.txt"));
  EXPECT_EQ(file.iconSide, 28);
  const RuleCell folder =
      cell(RuleList::CopyFilesTo, "SendFileIcon", Record{{"realPath", "~/Downloads"}});
  EXPECT_EQ(std::get<row_icon::Item>(folder.icon).path, "/home/ada/Downloads");
  const auto command = [&](const char* action) {
    return cell(RuleList::Others, "OthersIcon", Record{{"Action", action}});
  };
  EXPECT_EQ(std::get<row_icon::Resource>(command("Cut").icon).path, "/images/Cut.png");
  EXPECT_EQ(std::get<row_icon::Resource>(command("Pin by Snapvane").icon).path,
            "/images/Snapvane.png");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(command("Unknown").icon));
  EXPECT_EQ(command("Cut").iconSide, 20);
}

TEST_F(RuleRowsTest, imagesTellTheirSizes) {
  const std::string text = "image of a folder";
  const PropertyList::Data bytes(text.begin(), text.end());
  system_.images.usualSize = {512, 300};
  const Record record{{"icon", bytes}};
  EXPECT_EQ(cell(RuleList::CustomIcon, "Size", record).text, "512 x 300");
  EXPECT_EQ(*std::get<row_icon::Bytes>(cell(RuleList::CustomIcon, "Icon", record).icon).data,
            bytes);
  for (const Record& without : {Record{}, Record{{"icon", "text"}}}) {
    EXPECT_EQ(cell(RuleList::CustomIcon, "Size", without).text, "0 x 0");
  }
}

TEST_F(RuleRowsTest, switchesReadAnythingAndThreeCommandsAreLockedOn) {
  const auto isOn = [&](const PropertyList& enable) {
    return cell(RuleList::CustomIcon, "Enable", Record{{"enable", enable}}).isOn;
  };
  EXPECT_EQ(isOn("1"), true);
  EXPECT_EQ(isOn(1), true);
  EXPECT_EQ(isOn(0), false);
  EXPECT_EQ(isOn(PropertyList::Array{}), false);
  EXPECT_STREQ(cell(RuleList::CreateNewFile, "EnableMainMenu", Record{}).switchField,
               "enableMainMenu");
  for (const std::string_view action : alwaysOnActions) {
    const Record record{{"Action", action}, {"enable", 0}};
    EXPECT_EQ(cell(RuleList::Others, "OthersEnable", record).isOn, true);
    EXPECT_FALSE(cell(RuleList::Others, "OthersEnable", record).isSwitchEnabled);
    EXPECT_EQ(cell(RuleList::Others, "OthersDisplayName", record).editingIdentifier, "");
  }
}

TEST_F(RuleRowsTest, optionCellsSayWhatIsChosen) {
  const Record cut{{"Action", "Cut"}};
  EXPECT_EQ(cell(RuleList::Others, "Option", cut).option, "Cut");
  const std::string before = cell(RuleList::Others, "Option", cut).chosenOption;
  chooseOption(*optionOfAction("Cut"), 1, *system_.userDefaults.standardUserDefaults());
  EXPECT_NE(cell(RuleList::Others, "Option", cut).chosenOption, before);
  EXPECT_EQ(
      cell(RuleList::Others, "Option", Record{{"Action", "Image to Icon for iOS"}}).chosenOption,
      "");
}

TEST_F(RuleRowsTest, recordsOfAnyKindGiveEmptyCells) {
  for (const RuleListKeys& keys : ruleLists) {
    for (const PropertyList& record :
         {PropertyList(7), PropertyList("text"), PropertyList(Record{{"displayName", 7}}),
          PropertyList(Record{{"realPath", PropertyList::Array{}}, {"Action", 1}})}) {
      for (const RuleColumn& column : columnsOfRuleList(keys.list)) {
        const RuleCell shown = rows().cell(keys.list, column, record);
        EXPECT_NE(shown.isOn, true);
        const bool isSize = std::string(column.identifier) == "Size";
        EXPECT_EQ(shown.text, isSize ? "0 x 0" : "");
      }
    }
    const RuleColumn unknown{"Unknown", "", RuleColumn::Kind::Text};
    const RuleCell shown = rows().cell(keys.list, unknown, Record{{"displayName", "Title"}});
    EXPECT_EQ(shown.text, "");
    EXPECT_FALSE(shown.isOn);
  }
}

}  // namespace
}  // namespace tavrin
