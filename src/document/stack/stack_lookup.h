// Finding layers of a stack by id, index, name.
//
// An index counts from the bottom, 1 to the count; `members`: those of groups count, too, and a
// group stands after its members. With `group` an index counts in that group alone. The selection
// layer answers to its id and to the count (by the same flag) plus 1; -2 is the active layer.
#pragma once

#include <span>
#include <vector>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

[[nodiscard]] Layer* layerById(const StackParts& stack, std::int32_t id);
[[nodiscard]] Layer* layerByIndex(const StackParts& stack, std::int32_t index, bool members,
                                  LayerGroup* group = nullptr);
[[nodiscard]] std::int32_t indexOf(const StackParts& stack, const Layer* layer, bool members,
                                   LayerGroup* group = nullptr);
[[nodiscard]] std::int32_t indexOfId(const StackParts& stack, std::int32_t id, bool members,
                                     LayerGroup* group = nullptr);
[[nodiscard]] std::int32_t idOfIndex(const StackParts& stack, std::int32_t index, bool members,
                                     LayerGroup* group = nullptr);
[[nodiscard]] std::int32_t layerCountTotal(const StackParts& stack, bool members);
// Through the cache.
[[nodiscard]] std::int32_t activeIndex(StackParts& stack, bool members);
[[nodiscard]] std::int32_t groupDepth(const StackParts& stack, std::int32_t index, bool members);
[[nodiscard]] std::int32_t groupOf(const StackParts& stack, std::int32_t id);
[[nodiscard]] std::int32_t groupMemberCount(const StackParts& stack, std::int32_t id);
[[nodiscard]] std::int32_t groupChild(const StackParts& stack, std::int32_t id, std::int32_t index);
// How deep groups nest under a group; 0 for a plain layer.
[[nodiscard]] std::int32_t maxGroupDepth(const StackParts& stack, std::int32_t id);
[[nodiscard]] LayerGroup* groupById(const StackParts& stack, std::int32_t id);
// Of the top level, in or around which the layer stands; the layer itself at the top level.
[[nodiscard]] Layer* outermost(Layer* layer);
[[nodiscard]] bool isNameUnique(const StackParts& stack, const znString::IString& name);
// The name, cut to 245 units, with the first of "-1", "-2" ... by which it is unique.
[[nodiscard]] znString::IString uniqueName(const StackParts& stack, const znString::IString& name);
// The layers of the ids in list order, a group without those of its members that are in the list,
// too. -2 is the active layer; unknown ids and the selection are left out.
[[nodiscard]] std::vector<Layer*> normalizeIds(const StackParts& stack,
                                               std::span<const std::int32_t> ids);
// The group that the layer stands in; null at the top level and for null.
[[nodiscard]] LayerGroup* groupAround(const Layer* layer);
// A mask or stencil, which belongs to the paint layer below it; null isn't.
[[nodiscard]] bool isAttached(const Layer* layer);
// Whether the layer is that other one, or stands in it at any depth.
[[nodiscard]] bool standsIn(const Layer* layer, const Layer& other);
// The list that holds the layer.
[[nodiscard]] const LayerChain& chainOf(const StackParts& stack, const Layer& layer);

}  // namespace brushwork::stack
