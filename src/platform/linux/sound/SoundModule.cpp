#include "platform/linux/sound/SoundModule.h"

#include <pulse/error.h>
#include <pulse/simple.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

struct TavrinDecodedSound {
  pa_sample_spec format{};
  /// Frames of `format.channels` samples from -1 to 1.
  std::vector<float> samples;
};

namespace {

/// A feedback sound lasts seconds; more than that is no feedback sound.
constexpr sf_count_t longestSeconds = 30;

struct SoundFileCloser {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
struct ConnectionCloser {
  void operator()(pa_simple* connection) const { pa_simple_free(connection); }
};

void report(TavrinSoundFailure failure, const char* operation, const char* reason) {
  std::snprintf(failure.text, failure.size, "%s: %s", operation, reason);
}

bool isPlayable(const SF_INFO& info) {
  return info.channels > 0 && info.channels <= static_cast<int>(PA_CHANNELS_MAX) &&
         info.samplerate > 0 && info.samplerate <= static_cast<int>(PA_RATE_MAX);
}

std::vector<float> withVolume(const std::vector<float>& samples, float volume) {
  std::vector<float> scaled(samples.size());
  std::transform(samples.begin(), samples.end(), scaled.begin(),
                 [volume](float sample) { return sample * volume; });
  return scaled;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) TavrinDecodedSound* tavrinDecodeSound(
    const char* path, TavrinSoundFailure failure) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, SoundFileCloser> file(sf_open(path, SFM_READ, &info));
  if (!file) {
    report(failure, "read sound", sf_strerror(nullptr));
    return nullptr;
  }
  if (!isPlayable(info)) {
    report(failure, "read sound", "unusual channels or sample rate");
    return nullptr;
  }
  const sf_count_t frames =
      std::clamp(info.frames, sf_count_t{0}, longestSeconds * info.samplerate);
  auto sound = std::make_unique<TavrinDecodedSound>();
  sound->format = {PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(info.samplerate),
                   static_cast<std::uint8_t>(info.channels)};
  sound->samples.resize(static_cast<std::size_t>(frames * info.channels));
  const sf_count_t read = sf_readf_float(file.get(), sound->samples.data(), frames);
  sound->samples.resize(static_cast<std::size_t>(read * info.channels));
  return sound.release();
}

__attribute__((visibility("default"))) void tavrinFreeSound(TavrinDecodedSound* sound) {
  delete sound;
}

__attribute__((visibility("default"))) int tavrinPlaySound(const TavrinDecodedSound* sound,
                                                           float volume,
                                                           int (*shouldStop)(void* context),
                                                           void* context,
                                                           TavrinSoundFailure failure) {
  int error = 0;
  const std::unique_ptr<pa_simple, ConnectionCloser> connection(
      pa_simple_new(nullptr, "Tavrin", PA_STREAM_PLAYBACK, nullptr, "Feedback", &sound->format,
                    nullptr, nullptr, &error));
  if (!connection) {
    report(failure, "connect to the sound server", pa_strerror(error));
    return -1;
  }
  const std::vector<float> samples = withVolume(sound->samples, volume);
  // A twentieth of a second at a time, so that a stop is quick.
  const std::size_t step = std::size_t{sound->format.channels} * (sound->format.rate / 20 + 1);
  for (std::size_t at = 0; at < samples.size() && shouldStop(context) == 0; at += step) {
    const std::size_t count = std::min(step, samples.size() - at);
    if (pa_simple_write(connection.get(), samples.data() + at, count * sizeof(float), &error) < 0) {
      report(failure, "play sound", pa_strerror(error));
      return -1;
    }
  }
  if (shouldStop(context) == 0) pa_simple_drain(connection.get(), nullptr);
  return 0;
}
}
