/* Ids of the automation surface. Made by generate-bindings from the automation table: do not edit. */
#ifndef KV_SCENEPANE_IDS_H
#define KV_SCENEPANE_IDS_H

#endif
