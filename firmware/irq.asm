; The interrupt: once a frame, when the raster passes the cursor address.
; It counts frames and scans the keyboard. The acknowledge comes after the
; four pushes on purpose: by then the raster has left the cursor position,
; so the interrupt cannot be raised a second time in the same frame.
irq:    push af
        push bc
        push de
        push hl
        out (PORT_IRQ_ACK),a
        ld hl,(ticks)
        inc hl
        ld (ticks),hl
        call kbd_scan
        pop hl
        pop de
        pop bc
        pop af
        ei
        ret

; Reads all nine rows first, so that Shift counts for every key of the same
; frame, then hands each newly pressed key to kbd_press.
kbd_scan:
        ld hl,kbd_now
        ld c,0
_read:  ld a,c
        out (PORT_KBD_ROW),a
        in a,(PORT_KBD_READ)
        cpl
        ld (hl),a
        inc hl
        inc c
        ld a,c
        cp 9
        jr nz,_read

        ld hl,kbd_now
        ld de,kbd_prev
        ld c,0
_row:   ld a,(de)
        cpl
        and (hl)                ; held now and not before
        ld b,a
        ld a,(hl)
        ld (de),a
        ld a,b
        or a
        call nz,kbd_row_pressed
        inc hl
        inc de
        inc c
        ld a,c
        cp 9
        jr nz,_row
        jp kbd_repeat

; A = the newly pressed keys of row C. Keeps HL, DE and C.
; Keys are taken from bit 7 down, E following as the matrix index.
kbd_row_pressed:
        push hl
        push de
        ld d,a
        ld a,c
        add a,a
        add a,a
        add a,a
        add a,7
        ld e,a                  ; matrix index of bit 7
_bit:   ld a,d
        add a,a                 ; the top bit into carry
        ld d,a
        jr nc,_next
        ld a,e
        call key_char
        or a
        jr z,_next
        push de
        push bc
        call kbd_put
        pop bc
        pop de
        ld a,e
        ld (rep_pos),a
        ld a,30                 ; frames before a held key repeats
        ld (rep_count),a
_next:  dec e
        ld a,d
        or a
        jr nz,_bit
        pop de
        pop hl
        ret

; A = matrix index -> A = the character it types with the present Shift, or 0.
; Also leaves the character in rep_char.
key_char:
        push hl
        push de
        ld l,a
        ld h,0
        ld de,keys_normal
        ld a,(kbd_now+SHIFT_ROW)
        and SHIFT_MASK
        jr z,_look
        ld de,keys_shifted
_look:  add hl,de
        ld a,(hl)
        ld (rep_char),a
        pop de
        pop hl
        ret

; The last key pressed repeats while it is held, every fourth frame after
; the first 30.
kbd_repeat:
        ld a,(rep_pos)
        cp 0xFF
        ret z
        ld c,a
        rrca
        rrca
        rrca
        and 0x1F
        ld e,a
        ld d,0
        ld hl,kbd_now
        add hl,de               ; the key's row
        ld a,c
        and 7
        ld e,a
        ld d,0
        push hl
        ld hl,bit_masks
        add hl,de
        ld a,(hl)
        pop hl
        and (hl)
        jr z,_gone
        ld hl,rep_count
        dec (hl)
        ret nz
        ld (hl),4
        ld a,(rep_char)
        jp kbd_put
_gone:  ld a,0xFF
        ld (rep_pos),a
        ret

bit_masks:
        db 0x01,0x02,0x04,0x08,0x10,0x20,0x40,0x80

; Puts A in the key ring; a full ring drops it.
kbd_put:
        ld b,a
        ld a,(kbd_head)
        ld e,a
        inc a
        and KBD_BUF_MASK
        ld c,a
        ld a,(kbd_tail)
        cp c
        ret z
        ld d,0
        ld hl,kbd_buf
        add hl,de
        ld (hl),b
        ld a,c
        ld (kbd_head),a
        ret
