// SPDX-License-Identifier: MIT
#pragma once

// The addresses can be set at build time (see app/CMakeLists.txt). Those that stand here are reserved
// names, so that a build which sets none never calls a host that belongs to somebody else.
#ifndef TWINSIFT_HOMEPAGE
#define TWINSIFT_HOMEPAGE "https://www.twinsift.example/"
#endif
#ifndef TWINSIFT_HOMEPAGE_SHORT_FORM
#define TWINSIFT_HOMEPAGE_SHORT_FORM "www.twinsift.example"
#endif
#ifndef TWINSIFT_CONTACT_PAGE
#define TWINSIFT_CONTACT_PAGE "https://www.twinsift.example/contact/"
#endif
#ifndef TWINSIFT_SUPPORT_MAIL
#define TWINSIFT_SUPPORT_MAIL "mailto:support@twinsift.example"
#endif
#ifndef TWINSIFT_TWITTER_PAGE
#define TWINSIFT_TWITTER_PAGE "https://twitter.example/twinsift"
#endif
#ifndef TWINSIFT_FACEBOOK_PAGE
#define TWINSIFT_FACEBOOK_PAGE "https://facebook.example/twinsift"
#endif
#ifndef TWINSIFT_UPDATE_FILE
#define TWINSIFT_UPDATE_FILE "https://www.twinsift.example/twinsift/update.dat"
#endif

/**
 * What the product says of itself: the version, the build and the addresses of its maker.
 * The build system reads the version and the build from here, for the packages.
 */
namespace Product
{
inline constexpr char version[] = "1.2.3";
inline constexpr char build[] = "211117";

inline constexpr char homepage[] = TWINSIFT_HOMEPAGE;
inline constexpr char homepageShortForm[] = TWINSIFT_HOMEPAGE_SHORT_FORM;
inline constexpr char contactPage[] = TWINSIFT_CONTACT_PAGE;
inline constexpr char supportMail[] = TWINSIFT_SUPPORT_MAIL;
inline constexpr char twitterPage[] = TWINSIFT_TWITTER_PAGE;
inline constexpr char facebookPage[] = TWINSIFT_FACEBOOK_PAGE;
inline constexpr char updateFile[] = TWINSIFT_UPDATE_FILE;
} // namespace Product
