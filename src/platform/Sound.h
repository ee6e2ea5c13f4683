#pragma once

#include <memory>
#include <string>

namespace tavrin {

/// A feedback sound, prepared to play.
class Sound {
 public:
  virtual ~Sound() = default;

  /// From 0 (silent) to 1 (as recorded).
  virtual void setVolume(float volume) = 0;

  /// Starts playing and returns at once. No device, or one that is busy, means silence.
  virtual void play() = 0;
};

/// Makes sounds.
class SoundProvider {
 public:
  virtual ~SoundProvider() = default;

  /// The sound in an AIFF file; nullptr when there is no such file.
  virtual std::unique_ptr<Sound> soundWithContentsOfFile(const std::string& path) = 0;
};

}  // namespace tavrin
