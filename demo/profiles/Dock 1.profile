# Action profile of the demo printer Dock 1. Dock 2 has none, so that both answers can be seen.

Test = FS "PARCEL LABEL TEST" LF
    "0123456789" FF
Blank = FF
Feed = FF
Cut = GS "V" NUL
Reset = ESC "@"
