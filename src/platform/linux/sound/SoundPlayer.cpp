#include "platform/linux/sound/SoundPlayer.h"

#include <dlfcn.h>

#include <array>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

namespace tavrin {

namespace {

int isStopped(void* context) {
  return static_cast<const std::atomic<bool>*>(context)->load() ? 1 : 0;
}

}  // namespace

SoundPlayer::SoundPlayer(Log& log, std::string modulePath)
    : modulePath_(std::move(modulePath)), log_(&log) {}

void SoundPlayer::play(const std::string& path, float volume) {
  {
    const std::lock_guard lock(stateMutex_);
    if (isStopped_) return;
    ++playingCount_;
  }
  try {
    std::thread([self = shared_from_this(), path, volume] {
      self->playToEnd(path, volume);
      self->soundEnded();
    }).detach();
  } catch (const std::system_error& error) {
    soundEnded();
    logOnce(std::string("start a thread for a sound: ") + error.what());
  }
}

void SoundPlayer::stop(double seconds) {
  std::unique_lock lock(stateMutex_);
  isStopped_ = true;
  ended_.wait_for(lock, std::chrono::duration<double>(seconds),
                  [this] { return playingCount_ == 0; });
  log_ = nullptr;
}

void SoundPlayer::playToEnd(const std::string& path, float volume) {
  const DecodedSound sound = decodedSound(path);
  if (!sound || isStopped_) return;
  std::array<char, 256> text{};
  if (play_(sound.get(), volume, isStopped, &isStopped_, {text.data(), text.size()}) != 0) {
    logOnce(text.data());
  }
}

bool SoundPlayer::loadModule() {
  if (std::exchange(isModuleTried_, true)) return play_ != nullptr;
  // Never closed: a sound may still be playing when the program ends.
  void* module = ::dlopen(modulePath_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    const char* reason = ::dlerror();  // NOLINT(concurrency-mt-unsafe): per thread in glibc
    logOnce(std::string("open the sound module: ") + (reason == nullptr ? "" : reason));
    return false;
  }
  decode_ = reinterpret_cast<TavrinDecodeSound*>(::dlsym(module, decodeSoundSymbol));
  free_ = reinterpret_cast<TavrinFreeSound*>(::dlsym(module, freeSoundSymbol));
  play_ = reinterpret_cast<TavrinPlaySound*>(::dlsym(module, playSoundSymbol));
  if (decode_ != nullptr && free_ != nullptr && play_ != nullptr) return true;
  logOnce("the sound module is of another version: " + modulePath_);
  play_ = nullptr;
  return false;
}

SoundPlayer::DecodedSound SoundPlayer::decodedSound(const std::string& path) {
  const std::lock_guard lock(soundsMutex_);
  if (!loadModule()) return nullptr;
  const auto known = sounds_.find(path);
  if (known != sounds_.end()) return known->second;
  std::array<char, 256> text{};
  TavrinDecodedSound* decoded = decode_(path.c_str(), {text.data(), text.size()});
  if (decoded == nullptr) logOnce(text.data() + (" " + path));
  DecodedSound sound = decoded == nullptr ? nullptr : DecodedSound(decoded, free_);
  return sounds_.emplace(path, std::move(sound)).first->second;
}

void SoundPlayer::logOnce(const std::string& cause) {
  const std::lock_guard lock(stateMutex_);
  if (log_ != nullptr && loggedCauses_.insert(cause).second) log_->write(cause);
}

void SoundPlayer::soundEnded() {
  const std::lock_guard lock(stateMutex_);
  --playingCount_;
  ended_.notify_all();
}

}  // namespace tavrin
