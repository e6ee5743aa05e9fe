#pragma once
// The soak's guest file: the sample guest (profile, cards, affiliations) with
// as many renewable annual passes as a batch renews, each a copy of the
// sample's first pass that can be paid monthly, under its own product
// instance ID (chaosPassId) and barcode.

#include <filesystem>
#include <string>

namespace varnel::chaos {

/// Writes the guest file of passes `first` to `first + count - 1` into
/// `path`; an error text when the sample guest cannot be read or the file
/// cannot be written, else empty.
std::string writeChaosGuest(const std::filesystem::path& path, int first, int count);

}  // namespace varnel::chaos
