# The Markdown splitter against a regular-expression reading of its rules, and the prose
# renderer against its safety rules. The sources are built into each fuzzer so that they are
# instrumented too. Run, for example:
#   fuzz_markdownsplitter -max_len=4096 -timeout=5 -dict=<source>/fuzz/markdown/markdown.dict corpus/
get_target_property(markdown_sources varnholt_markdown SOURCES)
varnholt_add_fuzzer(fuzz_markdownsplitter
    SOURCES markdown/fuzz_markdownsplitter.cpp markdown/fuzzinput.h ${markdown_sources}
    LIBRARIES Qt6::Core PkgConfig::MD4C)
target_include_directories(fuzz_markdownsplitter PRIVATE ${PROJECT_SOURCE_DIR}/src/assistant)
varnholt_add_fuzzer(fuzz_inlinemarkdown
    SOURCES markdown/fuzz_inlinemarkdown.cpp markdown/fuzzinput.h ${markdown_sources}
    LIBRARIES Qt6::Core PkgConfig::MD4C)
target_include_directories(fuzz_inlinemarkdown PRIVATE ${PROJECT_SOURCE_DIR}/src/assistant)

# Not a fuzzer: replays a corpus at 64 Ki and 1 Mi characters without sanitizers, to show that
# both steps stay linear on what the fuzzers found.
add_executable(markdown_scaling markdown/markdown_scaling.cpp markdown/fuzzinput.h)
target_link_libraries(markdown_scaling PRIVATE varnholt_markdown)
