// A library in capitals, without a prefix, that does not care when it goes.
extern "C" __attribute__((visibility("default"))) int dyna_second_answer() { return 42; }
