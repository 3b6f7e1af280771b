#include "Cross/Util/RunTimeStructCopier.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace RunTimeStruct {

void Copier::Reserve(unsigned int count) { items.reserve(count); }

void Copier::AddRef(Ref const & source, Ref const & dest) {
    bool const agree = source.IsValid() && source.GetTypeInfo() == dest.GetTypeInfo() &&
                       source.GetTotalSize() == dest.GetTotalSize();
    if (agree)
        addItem(source.GetKey(), dest.GetKey());
}

void Copier::AddLayout(Layout const & source, Layout const & dest) {
    Reserve(source.GetMemberCount());
    for (unsigned int i = 0; i < source.GetMemberCount(); ++i) {
        LayoutMember const & from = *source.GetMember(i);
        LayoutMember const * const to = dest.FindMember(from.key);
        if (to && to->type == from.type)
            addItem(from.key, from.key);
    }
}

void Copier::AddAliasedLayout(Layout const & source, Layout const & dest,
                              std::map<Dictionary::Key, Dictionary::Key> const & aliases) {
    for (unsigned int i = 0; i < dest.GetMemberCount(); ++i) {
        LayoutMember const & to = *dest.GetMember(i);
        auto const alias = aliases.find(to.key);
        if (alias == aliases.end())
            continue;
        LayoutMember const * const from = source.FindMember(alias->second);
        if (from && from->type == to.type)
            addItem(from->key, to.key);
    }
}

void Copier::Clear() {
    items.clear();
    plans.clear();
}

void Copier::Copy(Buffer const & source, Buffer & dest) {
    Plan const & plan = planFor(source, dest);
    auto const * const from = static_cast<char const *>(source.GetData());
    auto * const to = static_cast<char *>(dest.GetData());
    if (plan.sourceEnd <= source.GetSize() && plan.destEnd <= dest.GetSize()) [[likely]] {
        for (Step const & step : plan.steps)
            std::memmove(to + step.destOffset, from + step.sourceOffset, step.size);
        return;
    }
    for (Step const & step : plan.members)
        if (std::uint64_t{step.sourceOffset} + step.size <= source.GetSize() &&
            std::uint64_t{step.destOffset} + step.size <= dest.GetSize())
            std::memmove(to + step.destOffset, from + step.sourceOffset, step.size);
}

// Plans reflect all items at once.
void Copier::addItem(Dictionary::Key const & sourceKey, Dictionary::Key const & destKey) {
    items.push_back({sourceKey, destKey});
    plans.clear();
}

Copier::Plan const & Copier::planFor(Buffer const & source, Buffer const & dest) {
    std::pair const wanted(source.GetLayoutID(), dest.GetLayoutID());
    auto const found =
        std::lower_bound(plans.begin(), plans.end(), wanted, [](Plan const & plan, auto const & ids) {
            return std::pair(plan.sourceLayoutID, plan.destLayoutID) < ids;
        });
    if (found != plans.end() && std::pair(found->sourceLayoutID, found->destLayoutID) == wanted)
        return *found;
    return *plans.insert(found, makePlan(source, dest));
}

Copier::Plan Copier::makePlan(Buffer const & source, Buffer const & dest) const {
    Plan plan{source.GetLayoutID(), dest.GetLayoutID(), {}, {}};
    for (Item const & item : items) {
        LayoutMember const * const from = source.FindMember(item.sourceKey);
        LayoutMember const * const to = dest.FindMember(item.destKey);
        if (!from || !to)
            continue;
        unsigned int const size = from->type->GetSize() * std::min(from->length, to->length);
        if (size != 0)
            plan.members.push_back({size, from->offset, to->offset});
    }
    std::stable_sort(plan.members.begin(), plan.members.end(), [](Step const & left, Step const & right) {
        return left.sourceOffset < right.sourceOffset;
    });
    for (Step const & step : plan.members) {
        plan.sourceEnd = std::max(plan.sourceEnd, std::uint64_t{step.sourceOffset} + step.size);
        plan.destEnd = std::max(plan.destEnd, std::uint64_t{step.destOffset} + step.size);
        Step * const last = plan.steps.empty() ? nullptr : &plan.steps.back();
        if (last && step.sourceOffset == last->sourceOffset + last->size &&
            step.destOffset == last->destOffset + last->size)
            last->size += step.size;
        else
            plan.steps.push_back(step);
    }
    return plan;
}

} // namespace RunTimeStruct
