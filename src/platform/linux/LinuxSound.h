#pragma once

#include <memory>
#include <string>

#include "platform/Log.h"
#include "platform/Sound.h"

namespace tavrin {

class SoundPlayer;

/// A sound file. It is decoded when it is first played, and kept.
class LinuxSound final : public Sound {
 public:
  LinuxSound(std::shared_ptr<SoundPlayer> player, std::string path);

  void setVolume(float volume) override;
  void play() override;

 private:
  std::shared_ptr<SoundPlayer> player_;
  std::string path_;
  float volume_ = 1.0F;
};

/// Plays on threads of its own that end with the sound. Without the module, a sound server or a
/// readable file there is silence, and the log says why once.
class LinuxSoundProvider final : public SoundProvider {
 public:
  /// `moduleFolder` is the absolute path of the program's modules. `log` outlives the provider; its
  /// sounds need neither, and stay silent after it.
  LinuxSoundProvider(Log& log, const std::string& moduleFolder);

  /// Stops what plays and waits for it a moment; a sound server that does not answer is not waited
  /// for.
  ~LinuxSoundProvider() override;
  LinuxSoundProvider(const LinuxSoundProvider&) = delete;
  LinuxSoundProvider& operator=(const LinuxSoundProvider&) = delete;

  std::unique_ptr<Sound> soundWithContentsOfFile(const std::string& path) override;

 private:
  std::shared_ptr<SoundPlayer> player_;
};

}  // namespace tavrin
