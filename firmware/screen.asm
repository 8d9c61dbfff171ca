; The text screen: 64 columns by 24 rows of 8 x 10 pixel cells in the two-
; colour mode. Video memory is used as a ring of 256 lines of 64 bytes, and
; the CRTC's screen start (R12/R13) says which line is at the top: scrolling
; moves the start by one text row and clears one row, instead of moving
; 15 KB. A text row may wrap from line 255 to line 0; every address is made
; from a line number that simply runs modulo 256.

; Clears all 256 lines and puts the cursor and the screen start home.
cls:    push af
        push bc
        push hl
        ld hl,VIDEO
        ld c,64                 ; 64 pages of 256 bytes
        xor a
_page:  ld b,32
_eight: rept 8
        ld (hl),a
        inc l
        endm
        djnz _eight
        inc h
        dec c
        jr nz,_page
        ld (cur_row),a
        ld (cur_col),a
        ld (top_line),a
        ld (cursor_shown),a
        call set_start
        pop hl
        pop bc
        pop af
        ret

; R12/R13 from top_line: in two colours the start counts in units of 8
; bytes, so a line of 64 bytes is 8 units.
set_start:
        push bc
        ld a,(top_line)
        ld b,a
        ld a,12
        out (PORT_CRTC_SEL),a
        ld a,b
        rlca
        rlca
        rlca
        and 0x07                ; top_line >> 5
        out (PORT_CRTC_DATA),a
        ld a,13
        out (PORT_CRTC_SEL),a
        ld a,b
        rlca
        rlca
        rlca
        and 0xF8                ; top_line << 3, low byte
        out (PORT_CRTC_DATA),a
        pop bc
        ret

; Prints the text at HL up to a 0 byte; HL ends past the 0.
put_text:
        ld a,(hl)
        inc hl
        or a
        ret z
        call put_char
        jr put_text

; Prints A: 13 starts a new line, 8 steps back one column (without
; erasing), codes 0x20 to 0x7F are drawn; the rest is ignored. Keeps all
; registers but F.
put_char:
        push af
        push bc
        push de
        push hl
        cp 13
        jr z,_nl
        cp 8
        jr z,_back
        cp 0x20
        jr c,_done
        cp 0x80
        jr nc,_done
        call draw_glyph
        ld a,(cur_col)
        inc a
        cp TEXT_COLS
        jr c,_col
_nl:    call new_line
        jr _done
_back:  ld a,(cur_col)
        or a
        jr z,_done
        dec a
_col:   ld (cur_col),a
_done:  pop hl
        pop de
        pop bc
        pop af
        ret

; Column 0 of the next row; below the last row the screen scrolls.
new_line:
        xor a
        ld (cur_col),a
        ld a,(cur_row)
        inc a
        cp TEXT_ROWS
        jr nc,_scroll
        ld (cur_row),a
        ret
_scroll:
        ld a,(top_line)
        add a,GLYPH_LINES
        ld (top_line),a
        call set_start
        ld a,TEXT_ROWS-1
        jp clear_row

; A = text row: clears its 10 lines.
clear_row:
        call row_line
        ld c,0
        call line_addr
        ld d,GLYPH_LINES
_line:  xor a
        ld b,LINE_BYTES
_byte:  ld (hl),a               ; a line never crosses a 256-byte page
        inc l
        djnz _byte
        ld a,l                  ; L is now the next line's; H must follow when
        or a                    ; the line ended a page
        jr nz,_same
        inc h
        ld a,h
        cp VIDEO_END_HI
        jr nz,_same
        ld h,high VIDEO
_same:  dec d
        jr nz,_line
        ret

; A = text row -> A = its first video line (modulo 256).
row_line:
        ld b,a
        add a,a
        add a,a
        add a,b
        add a,a                 ; row * 10
        ld b,a
        ld a,(top_line)
        add a,b
        ret

; A = video line, C = column -> HL = the byte's address:
; VIDEO + line * 64 + column.
line_addr:
        ld b,a
        rrca
        rrca
        and 0x3F
        or high VIDEO
        ld h,a
        ld a,b
        rrca
        rrca
        and 0xC0
        or c
        ld l,a
        ret

; HL -> the same column one video line down, line 255 wrapping to line 0.
next_line:
        ld a,l
        add a,LINE_BYTES
        ld l,a
        ret nc
        inc h
        ld a,h
        cp VIDEO_END_HI
        ret nz
        ld h,high VIDEO
        ret

; HL = the top byte of the cursor's cell.
cell_addr:
        ld a,(cur_row)
        call row_line
        push af
        ld a,(cur_col)
        ld c,a
        pop af
        jp line_addr

; Draws character A at the cursor, which does not move.
draw_glyph:
        sub 0x20
        ld l,a
        ld h,0
        add hl,hl
        ld d,h
        ld e,l
        add hl,hl
        add hl,hl
        add hl,de               ; (code - 0x20) * 10
        ld de,font
        add hl,de
        ex de,hl
        call cell_addr
        ld b,GLYPH_LINES
_line:  ld a,(de)
        ld (hl),a
        inc de
        call next_line
        djnz _line
        ret

; Inverts the cursor's cell: the cursor block on or off.
toggle_cursor:
        push af
        push bc
        push hl
        call cell_addr
        ld b,GLYPH_LINES
_line:  ld a,(hl)
        cpl
        ld (hl),a
        call next_line
        djnz _line
        ld a,(cursor_shown)
        xor 1
        ld (cursor_shown),a
        pop hl
        pop bc
        pop af
        ret

cursor_off:
        ld a,(cursor_shown)
        or a
        ret z
        jr toggle_cursor

; Colours. The monitor numbers them 0-15: bit 0 blue, bit 1 red, bit 2
; green, bit 3 bright. The default is bright white on blue.
colours_default:
        ld a,15
        ld (col_text),a
        ld a,1
        ld (col_paper),a
        ld (col_border),a
        ; fall through

; Writes the two-colour palette and the border from the colour numbers.
apply_colours:
        push hl
        ld a,(col_paper)
        call palette_byte
        out (PORT_PALETTE),a
        ld a,(col_text)
        call palette_byte
        out (PORT_PALETTE+1),a
        ld a,(col_border)
        call palette_byte
        add a,a                 ; the border takes the same bits one place up
        out (PORT_BORDER),a
        pop hl
        ret

; A = colour number -> A = palette byte (bits 0, 2, 4, 6 = blue, red, green,
; bright). Keeps all registers but F and HL.
palette_byte:
        and 15
        push de
        ld e,a
        ld d,0
        ld hl,palette_bytes
        add hl,de
        ld a,(hl)
        pop de
        ret

palette_bytes:
        db 0x00,0x01,0x04,0x05,0x10,0x11,0x14,0x15
        db 0x40,0x41,0x44,0x45,0x50,0x51,0x54,0x55
