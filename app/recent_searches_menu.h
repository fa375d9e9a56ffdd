#pragma once

class QLineEdit;

namespace tl::browser {
class SearchFieldController;
}

// The search field's recent searches: a clock at the field's end opens the
// menu "Recent Searches" with the searches and "Clear"; choosing one searches
// for it again. The clock shows once there is a search to offer.
namespace tl::app {

void addRecentSearches(QLineEdit *field, browser::SearchFieldController &search);

} // namespace tl::app
