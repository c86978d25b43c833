#include "strings/tag_stripping_adapters.h"

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "framework/exceptions.h"
#include "strings/tag_stripping.h"

namespace zel::adapters {

REALstring RemoveHTMLTagsZEL(REALstring text) noexcept {
  return RemoveHTMLTagsWithZEL(text, nullptr);
}

REALstring RemoveHTMLTagsWithZEL(REALstring text, REALstring replacement) noexcept {
  if (text == nullptr) return nullptr;
  return guarded(OnFailure::raise, [&] {
    HostText source(text), filler(replacement);
    return buildString(strings::removeHtmlTags(source.utf8(), filler.utf8()), encoding::kUTF8);
  });
}

REALstring SQLReplaceBooleanZEL(REALstring sql) noexcept {
  if (sql == nullptr) return nullptr;
  return guarded(OnFailure::raise, [&] {
    HostText source(sql);
    return buildString(strings::replaceSqlBooleans(source.utf8()), encoding::kUTF8);
  });
}

}  // namespace zel::adapters
