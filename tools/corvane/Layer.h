// The layer beside this program, and how an OpenCL loader gets to know it.

#pragma once

#include <optional>
#include <string>

namespace corvane {

/// The full path of the layer: beside this program or, in an install tree, in
/// the folder "lib" beside its own. None if it is in neither.
std::optional<std::string> findLayer();

/// The full path of corvane-coarsen, beside this program; none if it is not
/// there.
std::optional<std::string> findGenerator();

/// Adds \p layer to the layers that the environment names already.
void addLayer(const std::string &layer);

/// Finds and adds it. Otherwise says what to do and returns none.
std::optional<std::string> requireLayer();

} // namespace corvane
