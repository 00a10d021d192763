// What any program costs.
int main() {}
