#include "settings/window/SwitchBindings.h"

#include <QAbstractButton>
#include <QComboBox>

namespace tavrin {

SwitchBindings::SwitchBindings(UserDefaults& standardUserDefaults)
    : standardUserDefaults_(standardUserDefaults) {}

template <typename Update>
void SwitchBindings::follow(const char* key, const Update& update) {
  observations_.push_back(standardUserDefaults_.observe(
      key, [update](const std::optional<PropertyList>& /*newValue*/) { update(); }));
  update();
}

void SwitchBindings::show(QAbstractButton& checkBox, const char* key) {
  UserDefaults& store = standardUserDefaults_;
  follow(key, [&store, &checkBox, key] { checkBox.setChecked(store.boolForKey(key)); });
}

void SwitchBindings::bind(QAbstractButton& checkBox, const char* key) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&checkBox, &QAbstractButton::clicked, &checkBox,
                   [&store, key](bool on) { store.setObject(on, key); });
  show(checkBox, key);
}

void SwitchBindings::bind(QAbstractButton& checkBox, const RowOption& option, const char* key) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&checkBox, &QAbstractButton::clicked, &checkBox,
                   [&store, &option, key](bool on) {
                     chooseOption(option, choiceWithValue(option, key, on), store);
                   });
  show(checkBox, key);
}

void SwitchBindings::bind(QComboBox& popUp, const RowOption& option) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&popUp, &QComboBox::activated, &popUp,
                   [&store, &option](int choice) { chooseOption(option, choice, store); });
  follow(option.settings.front().key,
         [&store, &popUp, &option] { popUp.setCurrentIndex(chosenOption(option, store)); });
}

}  // namespace tavrin
