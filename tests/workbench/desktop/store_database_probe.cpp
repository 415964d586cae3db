// Changes a store database from a second process: "PATH set KEY VALUE" or "PATH push PREFIX COUNT",
// which subscribes to PREFIX0, PREFIX1, … and moves each to the front.
#include <cstdlib>
#include <iostream>
#include <string>

#include "workbench/desktop/store_database.h"

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string command = argv[2];
    try {
        kestrel::StoreDatabase database(argv[1]);
        if (command == "set") database.set_item(argv[3], argv[4]);
        for (int index = 0; command == "push" && index < std::atoi(argv[4]); ++index) {
            const std::string id = argv[3] + std::to_string(index);
            database.subscribe(id);
            database.move(id, 0);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
