' A cartridge: PMEM=0 pages the cartridge slot in at $C000 while pass 2 writes.
PMEM=0
ORG $C000
DB "TVMC"
        LD HL,@HELLO
        RST $18           ' print the text at HL
LOOP:
        HALT
        JR @LOOP
HELLO:
DB "Hello from the cartridge"
DB 0
