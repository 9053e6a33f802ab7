#include "common/draw_list.h"

void AddToDrawList(DrawList& list, DrawListEntry* entry) {
    std::unique_ptr<DrawListNode>* slot = &list.head;
    while (*slot) slot = &(*slot)->next;
    *slot = std::make_unique<DrawListNode>();
    (*slot)->entry = entry;
    list.count++;
}

void DrawDrawList(const DrawList& list, sf::RenderTarget& target) {
    int drawn = 0;
    for (const DrawListNode* node = list.head.get(); node && drawn < list.count;
         node = node->next.get(), drawn++) {
        const DrawListEntry* entry = node->entry;
        if (!entry || !entry->handle) continue;
        switch (entry->kind) {
            case DRAW_LIST_SPRITE:
            case DRAW_LIST_CIRCLE:
            case DRAW_LIST_RECTANGLE: target.draw(*entry->handle); break;
            default: break;
        }
    }
}

void ClearDrawList(DrawList& list) {
    // Unlink iteratively so a long list cannot exhaust the stack.
    std::unique_ptr<DrawListNode> node = std::move(list.head);
    while (node) node = std::move(node->next);
    list.count = 0;
}
