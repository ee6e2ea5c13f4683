#include <random>

#include "tests/settings/EditingFixture.h"

namespace tavrin {
namespace {

constexpr int stepCount = 4000;

/// What must hold after any edits: whose rows the list has, in which order, and what of each no
/// edit may touch. Rows go by a field that the program does not know.
class ListModel {
 public:
  std::vector<std::string> ids;
  bool isPublished = false;

  static std::string idOf(const PropertyList& row) {
    const std::string id = row.stringForKey("id");
    return id.empty() ? "none" : id;
  }

  static PropertyList newRow(const std::string& id, std::mt19937& random) {
    Row row{{"id", id},
            {"future", Row{{"of", id}, {"bytes", PropertyList::Data{0, 255}}}},
            {"Action", random() % 4 == 0 ? "Cut" : "Paste"},
            {"extension", "txt"}};
    if (random() % 3 != 0)
      row.insert({"enable", random() % 2 == 0 ? PropertyList("1") : PropertyList(0)});
    if (random() % 3 != 0) row.insert({"displayName", id});
    if (random() % 4 == 0) row.insert({"realPath", "Undefined"});
    return row;
  }

  static std::vector<std::string> idsOf(const Rows& rows) {
    std::vector<std::string> ids;
    for (const PropertyList& row : rows) ids.push_back(idOf(row));
    return ids;
  }
};

class EditingSequences : public EditingFixture {
 protected:
  void SetUp() override {
    fileManager.addFolder("/srv/data");
    for (const RuleListKeys& keys : ruleLists) {
      Rows rows = newRows(6);
      rows.insert(rows.begin() + 2, PropertyList(7));
      show(keys.list, rows);
      modelOf(keys.list).ids = ListModel::idsOf(rows);
    }
  }

  ListModel& modelOf(RuleList list) { return models_[list]; }
  std::size_t below(std::size_t limit) { return random_() % limit; }

  Rows newRows(std::size_t count) {
    Rows rows;
    while (rows.size() < count) {
      rows.push_back(ListModel::newRow("row " + std::to_string(++lastId_), random_));
    }
    return rows;
  }

  /// One edit of any kind; what it does to the order of the rows is told to the model.
  void edit(RuleList list) {
    ListModel& model = modelOf(list);
    const std::size_t row = below(model.ids.size() + 2);
    const bool isThere = row < model.ids.size();
    switch (below(8)) {
      case 0:
        rules().switchRow(list, row, record_field::enable, below(2) == 0);
        model.isPublished = model.isPublished || (isThere && list != RuleList::CommonPath);
        break;
      case 1:
        retitle(list, row);
        model.isPublished = model.isPublished || isThere;
        break;
      case 2:
        drop(list, row);
        break;
      case 3:
        remove(list, row);
        break;
      case 4:
        enableAll(list);
        break;
      case 5:
        add(list);
        break;
      case 6:
        storeElsewhere(list);
        break;
      default:
        selectPath(row);
        break;
    }
  }

  void clear(RuleList list) {
    show(list, {});
    modelOf(list) = {};
  }

  void expectAgreement(RuleList list) {
    const ListModel& model = modelOf(list);
    const Rows rows = rules().rows(list);
    EXPECT_EQ(ListModel::idsOf(rows), model.ids);
    EXPECT_EQ(stored(keyOf(list)), PropertyList(rows));
    if (model.isPublished) {
      EXPECT_EQ(published(keyOf(list)), PropertyList(enabledRowsOf(rows)));
    }
    for (const PropertyList& row : rows) {
      if (ListModel::idOf(row) == "none") continue;
      const PropertyList expected =
          Row{{"of", ListModel::idOf(row)}, {"bytes", PropertyList::Data{0, 255}}};
      ASSERT_NE(row.find("future"), nullptr);
      EXPECT_EQ(*row.find("future"), expected);
    }
  }

 private:
  void retitle(RuleList list, std::size_t row) {
    const std::map<RuleList, const char*> cells{{RuleList::CreateNewFile, "NewFileDisplayName"},
                                                {RuleList::CopyFilesTo, "Note"},
                                                {RuleList::CommonPath, "commonPathDisplayName"},
                                                {RuleList::CustomIcon, "CustomIconName"},
                                                {RuleList::Others, "OthersDisplayName"}};
    const char* titles[] = {"", "same", "../up", "other"};
    rules().controlTextShouldEndEditing(cells.at(list), row, titles[below(4)]);
  }

  /// Where exactly the row lands is told by the tests of dragging: here the others keep their
  /// order, and no row is lost.
  void drop(RuleList list, std::size_t row) {
    ListModel& model = modelOf(list);
    const std::size_t gap = below(model.ids.size() + 2);
    rules().acceptDrop(list, row, gap);
    if (row >= model.ids.size() || gap > model.ids.size()) return;
    model.isPublished = true;
    const std::string moved = model.ids[row];
    model.ids.erase(model.ids.begin() + static_cast<std::ptrdiff_t>(row));
    const auto ids = ListModel::idsOf(rules().rows(list));
    for (std::size_t place = 0; place <= model.ids.size(); ++place) {
      auto candidate = model.ids;
      candidate.insert(candidate.begin() + static_cast<std::ptrdiff_t>(place), moved);
      if (candidate != ids && place < model.ids.size()) continue;
      model.ids = candidate;
      return;
    }
  }

  void remove(RuleList list, std::size_t row) {
    ListModel& model = modelOf(list);
    view.selected[list] = row;
    rules().removeRule(list);
    if (list == RuleList::Others) return;
    model.isPublished = true;
    if (row < model.ids.size()) {
      model.ids.erase(model.ids.begin() + static_cast<std::ptrdiff_t>(row));
    }
  }

  void enableAll(RuleList list) {
    const char* key = keysOfRuleList(list).enableAllKey;
    if (key == nullptr) return;
    standard->setObject(below(2) == 0, key);
    rules().enableAllClick(list);
    modelOf(list).isPublished = true;
  }

  void add(RuleList list) {
    if (list != RuleList::CopyFilesTo && list != RuleList::CommonPath) return;
    panels.answerWithPaths({"/srv/data", "/srv"});
    rules().addRule(list);
    panels.endBegunPanel();
    ListModel& model = modelOf(list);
    model.ids.insert(model.ids.end(), 2, "none");
    model.isPublished = true;
  }

  void storeElsewhere(RuleList list) {
    ListModel& model = modelOf(list);
    Rows rows = rules().rows(list);
    for (PropertyList& row : newRows(1 + below(2))) rows.insert(rows.begin(), std::move(row));
    userDefaults.changeFromElsewhere("", keyOf(list), PropertyList(rows));
    userDefaults.processChanges();
    model.ids = ListModel::idsOf(rows);
    model.isPublished = false;
  }

  void selectPath(std::size_t row) {
    ListModel& model = modelOf(RuleList::CopyFilesTo);
    if (row >= model.ids.size()) return;
    panels.answerWithPath("/srv/data");
    rules().selectPath(row);
    panels.endBegunPanel();
    model.isPublished = true;
  }

  std::mt19937 random_{20240607};
  int lastId_ = 0;
  std::map<RuleList, ListModel> models_;
};

TEST_F(EditingSequences, LoseNoRowAndNoUnknownFieldAndKeepBothStoresAgreed) {
  std::size_t largest = 0;
  for (int step = 0; step < stepCount && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    const RuleList list = ruleLists.at(below(ruleLists.size())).list;
    edit(list);
    expectAgreement(list);
    if (step % 20 == 0) {
      for (const RuleListKeys& keys : ruleLists) expectAgreement(keys.list);
    }
    largest = std::max(largest, modelOf(list).ids.size());
    if (modelOf(list).ids.size() > 40) clear(list);
  }
  EXPECT_GT(largest, 20U);
}

}  // namespace
}  // namespace tavrin
