#pragma once

// Product constants, kept in one place.
namespace product {
inline constexpr char Name[] = "Zarvent";
inline constexpr char MaintainersMail[] = "maintainers@example.org";
inline constexpr char HomePage[] = "https://zarvent.example.org/";
} // namespace product
