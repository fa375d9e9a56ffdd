#pragma once

// The element type names of a screenplay, exactly as they are written and
// compared everywhere.
namespace tl::screenplay::type {

inline constexpr char SceneHeading[] = "Scene Heading";
inline constexpr char Action[] = "Action";
inline constexpr char Character[] = "Character";
inline constexpr char Dialogue[] = "Dialogue";
inline constexpr char Parenthetical[] = "Parenthetical";
inline constexpr char Transition[] = "Transition";
inline constexpr char Lyrics[] = "Lyrics";
inline constexpr char Boneyard[] = "Boneyard";
inline constexpr char Comment[] = "Comment";
inline constexpr char Synopsis[] = "Synopsis";
inline constexpr char SectionHeading[] = "Section Heading";
inline constexpr char PageBreak[] = "Page Break";
// Known to the pagination table only; no parser produces it.
inline constexpr char General[] = "General";

} // namespace tl::screenplay::type
