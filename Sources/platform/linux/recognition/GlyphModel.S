// The weights of the glyph classifier as a part of the program.
#ifdef __CET__
#include <cet.h>  // Says that this object keeps the control-flow protection, which one that doesn't takes from all.
#endif
	.section .rodata
	.balign 4
	.globl lumiscan_glyph_model
	.globl lumiscan_glyph_model_end
lumiscan_glyph_model:
	.incbin "glyphs.model"
lumiscan_glyph_model_end:
	.byte 0
	.section .note.GNU-stack,"",@progbits
