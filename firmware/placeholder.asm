; Fills a ROM socket for which this system has no code of its own: the
; extension ROM and the ROMs of the expansion cards. Nothing in the monitor
; calls into them; a program that reads one finds this text and 0xFF.
; ROM_SIZE comes from the build.

        org 0
        db "TVMON: this socket holds no code",0
        ds ROM_SIZE-$,0xFF
