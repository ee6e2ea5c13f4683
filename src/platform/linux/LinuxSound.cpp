#include "platform/linux/LinuxSound.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/sound/SoundPlayer.h"

namespace tavrin {

LinuxSound::LinuxSound(std::shared_ptr<SoundPlayer> player, std::string path)
    : player_(std::move(player)), path_(std::move(path)) {}

void LinuxSound::setVolume(float volume) {
  volume_ = std::clamp(volume, 0.0F, 1.0F);
}

void LinuxSound::play() {
  player_->play(path_, volume_);
}

LinuxSoundProvider::LinuxSoundProvider(Log& log, const std::string& moduleFolder)
    : player_(std::make_shared<SoundPlayer>(
          log, appendingPathComponent(moduleFolder, soundModuleName))) {}

LinuxSoundProvider::~LinuxSoundProvider() {
  constexpr double longestWait = 0.3;
  player_->stop(longestWait);
}

std::unique_ptr<Sound> LinuxSoundProvider::soundWithContentsOfFile(const std::string& path) {
  std::error_code missing;
  if (!std::filesystem::is_regular_file(path, missing)) return nullptr;
  return std::make_unique<LinuxSound>(player_, path);
}

}  // namespace tavrin
