; The command line: finding the command, reading its numbers, the commands.
; Numbers are hexadecimal, 1 to 4 digits; words may be typed in either case.

; Runs the line in line_buf.
run_line:
        ld hl,line_buf
        call upper_case
        ld hl,line_buf
        call skip_spaces
        or a
        ret z                   ; an empty line
        ld de,commands
_entry: ld a,(de)
        or a
        jp z,err_unknown
        push hl
_char:  ld a,(de)
        or a
        jr z,_end
        cp (hl)
        jr nz,_skip
        inc hl
        inc de
        jr _char
_end:   ld a,(hl)               ; the whole word must match
        or a
        jr z,_found
        cp ' '
        jr z,_found
_skip:  ld a,(de)               ; to the end of this entry's name
        inc de
        or a
        jr nz,_skip
        inc de                  ; and past its address
        inc de
        pop hl
        jr _entry
_found: pop bc                  ; drop the start of the word
        inc de                  ; past the name's 0
        ex de,hl
        ld a,(hl)
        inc hl
        ld h,(hl)
        ld l,a
        ex de,hl                ; DE = handler, HL = what follows the word
        push de
        ret                     ; handlers return to run_line's caller

commands:
        db "HELP",0
        dw cmd_help
        db "CLS",0
        dw cmd_cls
        db "MEM",0
        dw cmd_mem
        db "POKE",0
        dw cmd_poke
        db "GO",0
        dw cmd_go
        db "BEEP",0
        dw cmd_beep
        db "COLOR",0
        dw cmd_color
        db "MODE",0
        dw cmd_mode
        db "TSAVE",0
        dw cmd_tsave
        db "TLOAD",0
        dw cmd_tload
        db 0

; Small letters of the text at HL to capitals, up to the 0.
upper_case:
        ld a,(hl)
        or a
        ret z
        cp 'a'
        jr c,_next
        cp 'z'+1
        jr nc,_next
        sub 'a'-'A'
        ld (hl),a
_next:  inc hl
        jr upper_case

; HL -> the first character that is not a space, also in A.
skip_spaces:
        ld a,(hl)
        cp ' '
        ret nz
        inc hl
        jr skip_spaces

; Reads the next number into DE. Carry set when the line has no more
; arguments; a word that is not a number of 1 to 4 hex digits is an error.
get_hex:
        call skip_spaces
        or a
        scf
        ret z
        ld de,0
        ld b,0
_digit: ld a,(hl)
        call hex_value
        jr c,_end
        ex de,hl
        add hl,hl
        add hl,hl
        add hl,hl
        add hl,hl
        or l
        ld l,a
        ex de,hl
        inc hl
        inc b
        ld a,b
        cp 5
        jp nc,err_number
        jr _digit
_end:   ld a,b
        or a
        jp z,err_number
        ld a,(hl)
        or a
        ret z                   ; (carry is clear after OR)
        cp ' '
        jp nz,err_number
        or a
        ret

; A = character -> A = its value 0-15 with carry clear, or carry set.
hex_value:
        sub '0'
        ret c
        cp 10
        ccf
        ret nc
        sub 'A'-'0'
        ret c
        cp 6
        ccf
        ret c
        add a,10
        ret

; A number that must be there.
need_hex:
        call get_hex
        jp c,err_missing
        ret

; A number from 0 to FF, in E.
need_byte:
        call need_hex
check_byte:
        ld a,d
        or a
        jp nz,err_number
        ret

; Nothing may follow.
end_of_args:
        call skip_spaces
        or a
        ret z
        jp err_too_many

; Errors: the message, then the prompt again with a fresh stack.
err_unknown:
        ld hl,msg_unknown
        jr error
err_number:
        ld hl,msg_number
        jr error
err_missing:
        ld hl,msg_missing
        jr error
err_too_many:
        ld hl,msg_too_many
        jr error
err_too_long:
        ld hl,msg_too_long
error:  push hl
        ld hl,msg_error
        call put_text
        pop hl
        call put_text
        ld a,13
        call put_char
        jp monitor

msg_error:      db "? ",0
msg_unknown:    db "Unknown command",0
msg_number:     db "Bad number",0
msg_missing:    db "Missing argument",0
msg_too_many:   db "Too many arguments",0
msg_too_long:   db "Line too long",0

; HELP
cmd_help:
        call end_of_args
        ld hl,help_text
        jp put_text

help_text:
        db "Commands (numbers are hexadecimal):",13
        db "  HELP              this list",13
        db "  CLS               clear the screen",13
        db "  MEM [addr]        show 64 bytes from addr (or go on)",13
        db "  POKE addr b ...   store bytes from addr on",13
        db "  GO addr           call the program at addr",13
        db "  BEEP              sound a tone of about 1 kHz",13
        db "  COLOR [t [p [b]]] text, paper, border colour 0-F",13
        db "  MODE 2|4|16       test picture in 2, 4 or 16 colours",13
        db "  TSAVE start end   save bytes start-end to tape",13
        db "  TLOAD             load the next program from tape",13
        db 0

; CLS
cmd_cls:
        call end_of_args
        jp cls

; MEM [addr]: eight lines of eight bytes, in hex and as characters.
cmd_mem:
        call get_hex
        jr c,_dump
        call end_of_args
        ex de,hl
        ld (mem_next),hl
_dump:  ld hl,(mem_next)
        ld b,8
_line:  push bc
        call dump_line
        pop bc
        djnz _line
        ld (mem_next),hl
        ret

; One line of MEM for the 8 bytes at HL; HL ends 8 further on.
dump_line:
        call put_hex4
        ld a,' '
        call put_char
        call put_char
        push hl
        ld b,8
_hex:   ld a,(hl)
        call put_hex2
        ld a,' '
        call put_char
        inc hl
        djnz _hex
        pop hl
        call put_char
        ld b,8
_chr:   ld a,(hl)
        cp 0x20
        jr c,_dot
        cp 0x7F
        jr c,_show
_dot:   ld a,'.'
_show:  call put_char
        inc hl
        djnz _chr
        ld a,13
        jp put_char

; Prints HL, or A, in hex.
put_hex4:
        ld a,h
        call put_hex2
        ld a,l
put_hex2:
        push af
        rrca
        rrca
        rrca
        rrca
        call put_digit
        pop af
put_digit:
        and 15
        add a,'0'
        cp '9'+1
        jr c,_out
        add a,'A'-'9'-1
_out:   jp put_char

; POKE addr value...: every value is checked before the first is stored.
cmd_poke:
        call need_hex
        ex de,hl
        ld (poke_addr),hl
        ex de,hl
        push hl
        call need_byte
_check: call get_hex
        jr c,_store
        call check_byte
        jr _check
_store: pop hl
_next:  call get_hex
        ret c
        push hl
        ld hl,(poke_addr)
        ld (hl),e
        inc hl
        ld (poke_addr),hl
        pop hl
        jr _next

; GO addr: the program returns to the prompt with RET.
cmd_go:
        call need_hex
        call end_of_args
        ex de,hl
        jp (hl)

; BEEP: the tone generator at pitch 0xF3D, 195312.5 / (4096 - 0xF3D) =
; 1002 Hz, full volume, for 15 frames.
BEEP_PITCH_LO   equ 0x3D
BEEP_PITCH_HI   equ 0x0F
cmd_beep:
        call end_of_args
        ld a,BEEP_PITCH_LO
        out (PORT_TONE_LO),a
        ld a,BEEP_PITCH_HI + TONE_ON
        out (PORT_TONE_HI),a
        ld a,(port6)
        or VOLUME_BITS
        call set_port6
        ld b,15
        call wait_frames
        xor a
        out (PORT_TONE_HI),a
        ld a,(port6)
        and 0xFF-VOLUME_BITS
        jp set_port6

; Writes A to port 6 and remembers it; bit 7 is forced high.
set_port6:
        or STROBE_HIGH
        ld (port6),a
        out (PORT_MODE),a
        ret

; Waits B frames.
wait_frames:
        ei
        halt
        djnz wait_frames
        ret

; COLOR [text [paper [border]]]: no numbers restore the defaults.
cmd_color:
        call get_hex
        jp c,colours_default
        ld a,(col_paper)
        ld (new_paper),a
        ld a,(col_border)
        ld (new_border),a
        call check_colour
        ld (new_text),a
        call get_hex
        jr c,_set
        call check_colour
        ld (new_paper),a
        call get_hex
        jr c,_set
        call check_colour
        ld (new_border),a
        call end_of_args
_set:   ld a,(new_text)
        ld (col_text),a
        ld a,(new_paper)
        ld (col_paper),a
        ld a,(new_border)
        ld (col_border),a
        jp apply_colours

; DE must be a colour number 0-F; it is returned in A.
check_colour:
        call check_byte
        ld a,e
        cp 16
        jp nc,err_number
        ret

; MODE 2|4|16. The argument names the number of colours as it is written,
; so "16" arrives as 0x16.
cmd_mode:
        call need_hex
        call end_of_args
        ld a,d
        or a
        jp nz,err_number
        ld a,e
        cp 2
        jp z,picture_2
        cp 4
        jp z,picture_4
        cp 0x16
        jp z,picture_16
        jp err_number
