#pragma once

// Product constants, kept in one place.
namespace product {
inline constexpr char Name[] = "Zarvent";
inline constexpr char HomePage[] = "https://zarvent.example.org/";

// The maintainers' addresses, from the addresses file named at build time
// (ZARVENT_MAINTAINERS); the program reads no file for them.
extern const char MaintainersMail[]; // shown on the About window and kanna's notice
extern const char DonationAccount[]; // the account the donation page pays into
extern const char PaymentHost[];     // the payment service's host
extern const char ForumName[];       // the forum the About window invites to
extern const char ForumPage[];       // and its address
} // namespace product
