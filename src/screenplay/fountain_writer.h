#pragma once

#include <QString>

// A script back to Fountain text.
namespace tl::screenplay {
class FNScript;
}

namespace tl::screenplay::FountainWriter {

// The title page, a line end, and the body, trimmed of line ends.
QString documentFromScript(const FNScript &script);
QString bodyFromScript(const FNScript &script);
QString titlePageFromScript(const FNScript &script);

} // namespace tl::screenplay::FountainWriter
