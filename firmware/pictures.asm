; MODE's test pictures: each fills the whole video ring in its mode, waits
; for a key, and gives the text screen back, cleared.

; Two colours: a chequerboard of the text and paper colours, squares of 16
; pixels (2 bytes by 8 lines).
picture_2:
        ld hl,pattern
        ld b,LINE_BYTES/4
_fill:  ld (hl),0x00
        inc hl
        ld (hl),0x00
        inc hl
        ld (hl),0xFF
        inc hl
        ld (hl),0xFF
        inc hl
        djnz _fill
        ld c,0xFF
        ld a,MODE_2
        jr show_picture

; Four colours: four upright bands of palette colours 0 to 3 (black, red,
; green, blue, all bright). A pixel's colour index takes its low bit from
; the byte's upper half and its high bit from the lower half.
picture_4:
        ld a,0x00
        out (PORT_PALETTE),a
        ld a,0x44
        out (PORT_PALETTE+1),a
        ld a,0x50
        out (PORT_PALETTE+2),a
        ld a,0x41
        out (PORT_PALETTE+3),a
        ld hl,pattern
        ld de,band_bytes_4
        ld c,4
_band:  ld a,(de)
        ld b,LINE_BYTES/4
_byte:  ld (hl),a
        inc hl
        djnz _byte
        inc de
        dec c
        jr nz,_band
        ld c,0
        ld a,MODE_4
        jr show_picture

band_bytes_4:
        db 0x00,0xF0,0x0F,0xFF

; Sixteen colours: sixteen upright bands, colours 0 to 15 in the monitor's
; numbering, each 4 bytes (8 pixels) wide. A byte holds two pixels, the
; right one in the palette bits and the left one in the same bits one place
; up, so a band of one colour takes both.
picture_16:
        ld de,pattern
        ld c,0                  ; colour number
_band:  ld a,c
        call palette_byte
        ld b,a
        add a,a
        or b
        ld b,LINE_BYTES/16
_byte:  ld (de),a
        inc de
        djnz _byte
        inc c
        ld a,c
        cp 16
        jr nz,_band
        ld c,0
        ld a,MODE_16
        ; fall through

; A = video mode, C = what to XOR into the pattern every 8 lines. The
; picture is drawn before the mode changes, so the old screen is never
; shown in the new mode.
show_picture:
        push af
        ld a,c
        ld (pat_flip),a
        call draw_pattern
        xor a
        ld (top_line),a
        call set_start
        pop bc
        ld a,(port6)
        and 0xFF-MODE_BITS
        or b
        call set_port6
        call wait_key
        ld a,(port6)
        and 0xFF-MODE_BITS
        call set_port6
        call apply_colours
        jp cls

; Copies `pattern` to all 256 lines, XORing pat_flip in from every eighth
; line on (lines 0, 16, 32 ... show it; 8, 24 ... do not).
draw_pattern:
        ld hl,VIDEO
        ld c,0
_line:  ld a,l                  ; a multiple of 8 lines is a multiple of
        or a                    ; 512 bytes
        jr nz,_same
        ld a,h
        and 1
        jr nz,_same
        ld a,(pat_flip)
        xor c
        ld c,a
_same:  ld de,pattern
        ld b,LINE_BYTES
_byte:  ld a,(de)
        xor c
        ld (hl),a
        inc de
        inc hl
        djnz _byte
        ld a,h
        cp VIDEO_END_HI
        jr nz,_line
        ret
