#pragma once

#include "kalvo/display.h"

// The images of the console that the library shows. Its pages bring more of their own.
namespace kalvo::images {

// clang-format off
//                                       path                                             width height
inline constexpr ImageView kBlankSort           {"../Images/Controls/BlankSort.gif",         17, 16};
inline constexpr ImageView kUp                  {"../Images/Controls/Up.gif",                20, 16};
inline constexpr ImageView kDown                {"../Images/Controls/Down.gif",              20, 16};
inline constexpr ImageView kCheck               {"../Images/Controls/Check.gif",             16, 16};
inline constexpr ImageView kEmptyCheck          {"../Images/Controls/EmptyCheck.gif",        16, 16};
inline constexpr ImageView kMessage             {"../Images/Message.gif",                    16, 16};
inline constexpr ImageView kFolder              {"../Images/Folder.gif",                     16, 16};
inline constexpr ImageView kAttachment          {"../Images/Attachment.gif",                 16, 16};
// Kept: the spacer of the image folder itself, not the control image of the same name: pages show it so.
inline constexpr ImageView kNoAttachment        {"../Images/BlankGraphSpacing.gif",          16, 16};
// clang-format on

}  // namespace kalvo::images
