' Hello on the screen, through the built-in monitor's print call.
' Assemble once the monitor is up, then start it from the prompt:
'   tvc-headless --dir build/firmware/roms --asm-after 100 --asm examples/hello.asm
'                --type 'GO 4000\n' --type-after 110 --screenshot hello.png
ORG $4000
        LD HL,@TEXT
        RST $18           ' print the text at HL up to a 0 byte
        RET               ' back to the prompt
TEXT:
DB "Hello from the TVC assembler!"
DB 13,0
