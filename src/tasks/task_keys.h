#pragma once

// Keys and values of the task records in a book's TLTasklistDetails.plist,
// and the settings the task lists read.
namespace tl::tasks::keys {

inline constexpr char DueItemCount[] = "__DueItemCount__";
inline constexpr char DoneItemCount[] = "__DoneItemCount__";

inline constexpr char State[] = "State";
inline constexpr char Changed[] = "Changed";
inline constexpr char DueDate[] = "DueDate";
inline constexpr char RepeatType[] = "RepeatType";
inline constexpr char RepeatUnit[] = "RepeatUnit";
inline constexpr char RepeatFactor[] = "RepeatFactor";

inline constexpr char Started[] = "started";
inline constexpr char Done[] = "done";
inline constexpr char Canceled[] = "canceled";
inline constexpr char NoTask[] = "no_task";

inline constexpr char WhenDue[] = "when due";
inline constexpr char WhenDone[] = "when done";

inline constexpr char AllTaskLists[] = "allTaskLists";
inline constexpr char TasklistCollectDate[] = "tasklistCollectDate";
inline constexpr char RebuildingAllTasklistsFlag[] = "rebuildingAllTasklistsFlag";
inline constexpr char DueTasksLookAhead[] = "dueTasksLookAhead";
inline constexpr char MarkTaskWithCharacter[] = "markTaskWithCharacter";
inline constexpr char ExtractTasksToInbox[] = "extractTasksToInbox";
inline constexpr char AssignDefaultDueDate[] = "assignDefaultDueDate";

} // namespace tl::tasks::keys
