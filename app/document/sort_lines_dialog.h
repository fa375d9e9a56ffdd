#pragma once

class QWidget;

// The sort sheet: its two options set the sort settings; answers whether
// the user chose "Sort".
namespace tl::app::SortLinesDialog {

bool ask(QWidget *parent);

} // namespace tl::app::SortLinesDialog
