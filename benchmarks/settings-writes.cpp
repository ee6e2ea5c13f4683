// What a switch in a long list of rules costs: the list is stored and its enabled rows are
// published, as the program does. Prints medians.
//
// Usage: settings-writes [ROWS [ICONS]]

#include <QBuffer>
#include <QImage>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxImage.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "settings/SettingsKeys.h"

namespace tavrin {
namespace {

constexpr int iconSide = 512;
constexpr int switches = 101;
constexpr int readings = 11;
constexpr const char* suiteName = "group.benchmark";
constexpr const char* key = settings_key::arrOfCustomIcon;

class ConsoleLog final : public Log {
 public:
  void write(std::string_view line) override { std::cerr << line << '\n'; }
};

/// A configuration folder of its own.
class Configuration {
 public:
  Configuration() {
    std::string pattern = std::filesystem::temp_directory_path() / "settings-writes-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    folder_ = pattern;
    ::setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  }
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;
  ~Configuration() { std::filesystem::remove_all(folder_); }

 private:
  std::filesystem::path folder_;
};

/// A gradient with a little noise on a round, transparent ground: an icon as people make them.
PropertyList::Data pictureOfIcon(unsigned number) {
  QImage picture(iconSide, iconSide, QImage::Format_ARGB32);
  std::minstd_rand random(number + 1);
  const int noise = static_cast<int>(number % 4U) * 2 + 1;
  for (int y = 0; y < iconSide; ++y) {
    for (int x = 0; x < iconSide; ++x) {
      const int dx = x - iconSide / 2;
      const int dy = y - iconSide / 2;
      const bool inside = dx * dx + dy * dy < iconSide * iconSide / 4;
      const int grain = static_cast<int>(random() % static_cast<unsigned>(noise));
      const int red = (x / 3 + static_cast<int>(number)) % 250 + grain / 2;
      picture.setPixel(x, y, inside ? qRgba(red, y / 3 + grain, 128 + grain, 255) : 0);
    }
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "png", 100);
  return {bytes.begin(), bytes.end()};
}

PropertyList::Array makeRows(ImageProvider& images, int rowCount, int iconCount) {
  PropertyList::Array rows;
  std::size_t bytes = 0;
  for (int row = 0; row < rowCount; ++row) {
    PropertyList::Dictionary record = {
        {record_field::enable, true},
        {"title", "A rule with the number " + std::to_string(row)},
        {"path", "/home/somebody/Documents/Folder " + std::to_string(row)},
        {"tag", row}};
    if (row < iconCount) {
      const auto image = images.imageWithData(pictureOfIcon(static_cast<unsigned>(row)));
      auto tiff = image->tiffRepresentation();
      bytes += tiff.value().size();
      record.emplace("icon", std::move(tiff.value()));
    }
    rows.emplace_back(std::move(record));
  }
  std::cout << rowCount << " rows, " << iconCount << " TIFF files of " << iconSide << " x "
            << iconSide << " pixels, " << bytes << " bytes in all\n";
  return rows;
}

PropertyList::Array enabledRows(const PropertyList::Array& rows) {
  PropertyList::Array enabled;
  for (const PropertyList& row : rows) {
    if (row.boolForKey(record_field::enable)) enabled.push_back(row);
  }
  return enabled;
}

double milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

void print(const char* what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  const double median = times[times.size() / 2];
  const double mostly = times[times.size() * 9 / 10];
  std::cout << std::left << std::setw(50) << what << std::right << std::fixed
            << std::setprecision(2) << std::setw(9) << median << " ms, nine in ten within "
            << std::setw(8) << mostly << ", longest " << std::setw(8) << times.back() << '\n';
}

void store(UserDefaults& standard, const PropertyList::Array& rows) {
  standard.setObject(rows, key);
  standard.synchronize();
}

void publish(UserDefaults& suite, const PropertyList::Array& rows) {
  suite.setObject(enabledRows(rows), key);
  suite.synchronize();
}

/// Switches one row after the other off and on again.
void measureSwitches(UserDefaults& standard, UserDefaults& suite, PropertyList::Array& rows) {
  std::vector<double> storing;
  std::vector<double> publishing;
  std::vector<double> both;
  std::vector<double> waiting;
  for (int time = 0; time < switches; ++time) {
    const std::size_t row = static_cast<std::size_t>(time) / 2 * 97 % rows.size();
    rows[row].dictionaryIfDictionary()->insert_or_assign(record_field::enable, time % 2 != 0);
    storing.push_back(milliseconds([&] { standard.setObject(rows, key); }));
    publishing.push_back(milliseconds([&] { suite.setObject(enabledRows(rows), key); }));
    waiting.push_back(milliseconds([&] {
      standard.synchronize();
      suite.synchronize();
    }));
    both.push_back(storing.back() + publishing.back() + waiting.back());
  }
  print("a switch: the list into the standard store", storing);
  print("a switch: the enabled rows into the suite", publishing);
  print("a switch: the disk, for both stores", waiting);
  print("a switch: all of it", both);
}

void measureReading(Log& log) {
  std::vector<double> cold;
  std::vector<double> held;
  std::vector<double> firstPublication;
  for (int time = 0; time < readings; ++time) {
    LinuxUserDefaultsProvider provider(log);
    const auto standard = provider.standardUserDefaults();
    const auto suite = provider.suite(suiteName);
    PropertyList::Array rows;
    cold.push_back(milliseconds([&] { rows = standard->arrayForKey(key); }));
    held.push_back(milliseconds([&] { standard->arrayForKey(key); }));
    firstPublication.push_back(milliseconds([&] { publish(*suite, rows); }));
  }
  print("reading the list, nothing of it in memory", cold);
  print("reading the list while somebody holds it", held);
  print("the first publication of a list that was read", firstPublication);
}

void run(int rowCount, int iconCount) {
  const Configuration configuration;
  ConsoleLog log;
  LinuxSecurityScope scopes({}, log);
  const LinuxFileManager files(scopes, log);
  LinuxImageProvider images(files, log);
  {
    LinuxUserDefaultsProvider provider(log);
    const auto standard = provider.standardUserDefaults();
    const auto suite = provider.suite(suiteName);
    PropertyList::Array rows = makeRows(images, rowCount, iconCount);
    print("the first time: the list into the standard store",
          {milliseconds([&] { store(*standard, rows); })});
    print("the first time: the enabled rows into the suite",
          {milliseconds([&] { publish(*suite, rows); })});
    measureSwitches(*standard, *suite, rows);
  }
  measureReading(log);
}

}  // namespace
}  // namespace tavrin

int main(int count, char** arguments) {
  const int rows = count > 1 ? std::atoi(arguments[1]) : 2000;
  const int icons = count > 2 ? std::atoi(arguments[2]) : 300;
  if (rows < 1 || icons < 0 || icons > rows) {
    std::cerr << "Usage: settings-writes [ROWS [ICONS]]\n";
    return 2;
  }
  tavrin::run(rows, icons);
  return 0;
}
