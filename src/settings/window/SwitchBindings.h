#pragma once

#include <vector>

#include "platform/UserDefaults.h"
#include "settings/RowOptions.h"

class QAbstractButton;
class QComboBox;

namespace tavrin {

/// Ties the window's controls to settings in both directions: what the user chooses is stored at
/// once, and what anybody stores is shown at once. The controls outlive this object or end with it.
class SwitchBindings {
 public:
  /// Outlives this object.
  explicit SwitchBindings(UserDefaults& standardUserDefaults);

  /// A check box and a boolean setting.
  void bind(QAbstractButton& checkBox, const char* key);
  /// A check box and the boolean setting of an option with that key; a click chooses in the whole
  /// option.
  void bind(QAbstractButton& checkBox, const RowOption& option, const char* key);
  /// A pop-up that shows both choices of an option.
  void bind(QComboBox& popUp, const RowOption& option);

 private:
  template <typename Update>
  void follow(const char* key, const Update& update);
  void show(QAbstractButton& checkBox, const char* key);

  UserDefaults& standardUserDefaults_;
  std::vector<Observation> observations_;
};

}  // namespace tavrin
