; Keys from the interrupt's ring, and the line editor.

; Waits for a key with the cursor blinking at the text cursor; returns it in
; A with the cursor block removed. Keeps BC, DE and HL.
get_key:
        push bc
        push de
        push hl
        ld a,(ticks)
        ld (blink_from),a
_wait:  call key_ready
        jr nz,_got
        ld a,(blink_from)
        ld b,a
        ld a,(ticks)
        sub b
        and 16                  ; on for 16 frames, off for 16, from the start
        jr z,_on
        ld a,(cursor_shown)
        or a
        call nz,toggle_cursor
        jr _sleep
_on:    ld a,(cursor_shown)
        or a
        call z,toggle_cursor
_sleep: ei                      ; the interrupt must be able to wake us
        halt
        jr _wait
_got:   call cursor_off
        call take_key
        pop hl
        pop de
        pop bc
        ret

; The same without a cursor, for the test pictures.
wait_key:
        ei
        halt
        call key_ready
        jr z,wait_key
        jr take_key

; NZ when the ring holds a key.
key_ready:
        ld a,(kbd_tail)
        ld b,a
        ld a,(kbd_head)
        cp b
        ret

; Takes the next key from the ring (which must hold one) into A.
take_key:
        push de
        push hl
        ld a,(kbd_tail)
        ld e,a
        ld d,0
        ld hl,kbd_buf
        add hl,de
        inc a
        and KBD_BUF_MASK
        ld (kbd_tail),a
        ld a,(hl)
        pop hl
        pop de
        ret

; Reads a line into line_buf, ending it with 0, and moves to the next line.
; Typing goes on past LINE_MAX characters without showing them: line_over
; counts them (Backspace takes them back first) and the caller refuses the
; line.
read_line:
        xor a
        ld (line_len),a
        ld (line_over),a
_key:   call get_key
        cp 13
        jr z,_enter
        cp 8
        jr z,_back
        cp 0x20
        jr c,_key
        cp 0x7F
        jr nc,_key
        ld b,a
        ld a,(line_len)
        cp LINE_MAX
        jr nc,_over
        ld e,a
        ld d,0
        ld hl,line_buf
        add hl,de
        ld (hl),b
        inc a
        ld (line_len),a
        ld a,b
        call put_char
        jr _key
_over:  ld a,(line_over)
        inc a
        jr z,_key               ; stays at 255
        ld (line_over),a
        jr _key
_back:  ld a,(line_over)
        or a
        jr z,_shown
        dec a
        ld (line_over),a
        jr _key
_shown: ld a,(line_len)
        or a
        jr z,_key
        dec a
        ld (line_len),a
        ld a,8
        call put_char
        ld a,' '
        call put_char
        ld a,8
        call put_char
        jr _key
_enter: ld a,(line_len)
        ld e,a
        ld d,0
        ld hl,line_buf
        add hl,de
        ld (hl),0
        ld a,13
        jp put_char
