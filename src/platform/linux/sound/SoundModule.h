#pragma once

#include <cstddef>

/// The entry points of the module that decodes and plays sounds. It is a module of its own, opened
/// at the first sound, so that the libraries behind it cost nothing before.
extern "C" {

/// A sound decoded into memory.
struct TavrinDecodedSound;

/// What a call of the module reports a failure with: a text for the log of at most `size` bytes,
/// the closing 0 included.
struct TavrinSoundFailure {
  char* text;
  std::size_t size;
};

/// Decodes the sound file at `path`; nullptr and a failure when it cannot be. The sound can be
/// played any number of times until it is freed.
using TavrinDecodeSound = TavrinDecodedSound*(const char* path, TavrinSoundFailure failure);
using TavrinFreeSound = void(TavrinDecodedSound* sound);

/// Plays the sound to its end, or until `shouldStop` answers other than 0, at a volume from 0 to 1,
/// and returns 0. Returns -1 and a failure when there is no sound server or it refuses the sound.
using TavrinPlaySound = int(const TavrinDecodedSound* sound, float volume,
                            int (*shouldStop)(void* context), void* context,
                            TavrinSoundFailure failure);
}

namespace tavrin {

inline constexpr const char* soundModuleName = "libtavrin-sound.so";
inline constexpr const char* decodeSoundSymbol = "tavrinDecodeSound";
inline constexpr const char* freeSoundSymbol = "tavrinFreeSound";
inline constexpr const char* playSoundSymbol = "tavrinPlaySound";

}  // namespace tavrin
