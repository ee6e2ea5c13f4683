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
}

template <typename Update>
void SwitchBindings::follow(const RowOption& option, const Update& update) {
  for (const OptionSetting& setting : option.settings) {
    if (setting.key != nullptr) follow(setting.key, update);
  }
  update();
}

void SwitchBindings::bind(QAbstractButton& checkBox, const char* key) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&checkBox, &QAbstractButton::clicked, &checkBox,
                   [&store, key](bool on) { store.setObject(on, key); });
  const auto update = [&store, &checkBox, key] { checkBox.setChecked(store.boolForKey(key)); };
  follow(key, update);
  update();
}

void SwitchBindings::bind(QAbstractButton& checkBox, const RowOption& option, int checkedChoice) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&checkBox, &QAbstractButton::clicked, &checkBox,
                   [&store, &option, checkedChoice](bool on) {
                     chooseOption(option, on ? checkedChoice : 1 - checkedChoice, store);
                   });
  follow(option, [&store, &checkBox, &option, checkedChoice] {
    checkBox.setChecked(chosenOption(option, store) == checkedChoice);
  });
}

void SwitchBindings::bind(QComboBox& popUp, const RowOption& option) {
  UserDefaults& store = standardUserDefaults_;
  QObject::connect(&popUp, &QComboBox::activated, &popUp,
                   [&store, &option](int choice) { chooseOption(option, choice, store); });
  follow(option, [&store, &popUp, &option] { popUp.setCurrentIndex(chosenOption(option, store)); });
}

}  // namespace tavrin
