#!/usr/bin/env bash
# Fills a new demo library with a few books and documents to look at:
# Markdown with tasks and links, plain text, a sub-book. Leaves a library
# that already has books alone.
set -euo pipefail
library="$1"
[ -d "$library/Projects" ] && exit 0
mkdir -p "$library/Projects/Garden" "$library/Journal" "$library/Recipes"

cat > "$library/Projects/Kitchen renovation.md" <<'MD'
# Kitchen renovation

The plan for the spring, with the quotes we have so far.

- [x] Measure the room
- [x] Ask three carpenters for a quote
- [ ] Choose the worktop
- [ ] Order the tiles

| Item     | Quote  |
|----------|--------|
| Cabinets | 4,200  |
| Worktop  | 1,150  |

See also [the garden plan](Garden/Vegetable%20beds.md).
MD

cat > "$library/Projects/Garden/Vegetable beds.md" <<'MD'
# Vegetable beds

Four beds, rotated each year: **roots**, *legumes*, brassicas, potatoes.

> Plant the beans after the last frost.
MD

cat > "$library/Projects/Reading list.txt" <<'TXT'
Reading list

The Name of the Rose
A Pattern Language
The Old Man and the Sea
TXT

cat > "$library/Journal/Monday.md" <<'MD'
# Monday

A quiet start of the week. Finished the draft of the garden plan and
called the carpenter about the kitchen.
MD

cat > "$library/Journal/Tuesday.md" <<'MD'
# Tuesday

Rain all day. Read two chapters and sorted the photos of the summer.
MD

cat > "$library/Recipes/Lentil soup.md" <<'MD'
# Lentil soup

1. Soften an onion, a carrot and a stick of celery in olive oil.
2. Add 200 g of red lentils and a litre of stock.
3. Simmer for 20 minutes, season with cumin and lemon.
MD

cat > "$library/Recipes/Bread.md" <<'MD'
# Bread

500 g flour, 350 g water, 10 g salt, 5 g yeast. Knead, rest overnight, bake at 230 °C.
MD
