#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <initializer_list>
#include <string>

#include "foundation/PropertyList.h"

namespace tavrin::fuzz {

/// What an input says, taken from its bytes one after the other. An input that is used up says
/// zeros and empty texts.
using Input = FuzzedDataProvider;

/// One of the texts, or any other one.
std::string textFrom(Input& input, std::initializer_list<const char*> usual);

/// A value of any kind, with collections in collections to a small depth.
PropertyList anyValue(Input& input);

/// A switch as somebody may have written it: on or off, or any value.
PropertyList switchFrom(Input& input);

/// A record of a rule list: its fields missing, as they should be, or of any kind; sometimes no
/// dictionary at all.
PropertyList recordFrom(Input& input);

/// Some records; sometimes no array.
PropertyList recordsFrom(Input& input);

}  // namespace tavrin::fuzz
