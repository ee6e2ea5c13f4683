#pragma once

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "platform/Log.h"
#include "platform/linux/sound/SoundModule.h"

namespace tavrin {

/// Plays sound files by the sound module, each on a thread of its own. The threads share the
/// player, so one that hangs in the sound server outlives its owner unharmed.
class SoundPlayer : public std::enable_shared_from_this<SoundPlayer> {
 public:
  SoundPlayer(Log& log, std::string modulePath);

  /// Starts the sound and returns at once.
  void play(const std::string& path, float volume);

  /// Stops all sounds and waits until they have ended, for `seconds` at the most. Nothing is logged
  /// or played afterwards.
  void stop(double seconds);

 private:
  using DecodedSound = std::shared_ptr<const TavrinDecodedSound>;

  void playToEnd(const std::string& path, float volume);
  bool loadModule();
  DecodedSound decodedSound(const std::string& path);
  void logOnce(const std::string& cause);
  void soundEnded();

  const std::string modulePath_;
  std::atomic<bool> isStopped_ = false;

  std::mutex soundsMutex_;
  /// Guarded by soundsMutex_, down to sounds_.
  bool isModuleTried_ = false;
  TavrinDecodeSound* decode_ = nullptr;
  TavrinFreeSound* free_ = nullptr;
  TavrinPlaySound* play_ = nullptr;
  /// By path; nullptr for a file that could not be decoded.
  std::map<std::string, DecodedSound> sounds_;

  std::mutex stateMutex_;
  std::condition_variable ended_;
  /// Guarded by stateMutex_, as the two below; nullptr once stopped.
  Log* log_;
  std::set<std::string> loggedCauses_;
  int playingCount_ = 0;
};

}  // namespace tavrin
