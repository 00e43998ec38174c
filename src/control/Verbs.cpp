#include "control/Verbs.h"

namespace corvina {
namespace {

constexpr Verb verbs[] = {
    {.number = OLEIVERB_SHOW},
    {.number = OLEIVERB_INPLACEACTIVATE},
    {.number = OLEIVERB_UIACTIVATE},
    {.number = OLEIVERB_HIDE},
    {.number = OLEIVERB_PROPERTIES},
    {.number = aboutVerb,
     .name = L"&About...",
     .attributes = OLEVERBATTRIB_ONCONTAINERMENU | OLEVERBATTRIB_NEVERDIRTIES},
};

} // namespace

std::span<const Verb> controlVerbs() noexcept {
    return verbs;
}

} // namespace corvina
