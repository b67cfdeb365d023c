namespace Qelm
{
    /// <summary>
    /// The native library's system order, made from the tags by its documented rule: tagged vertices first, in
    /// input order; free vertices from the back, the first free one last. Immutable, shared by duplicates.
    /// </summary>
    internal sealed unsafe class VertexOrder
    {
        private readonly int[] inputOfSystem;

        internal VertexOrder(int* tags, int count)
        {
            inputOfSystem = new int[count];
            int front = 0;
            int back = count;
            for (int i = 0; i < count; ++i)
            {
                inputOfSystem[IsPrescribed(tags[i]) ? front++ : --back] = i;
            }
            FixedCount = front;
        }

        internal int FixedCount { get; private set; }

        internal int Count
        {
            get { return inputOfSystem.Length; }
        }

        /// <summary>The input vertex that stands at a system index.</summary>
        internal int InputOf(int systemVertex)
        {
            return inputOfSystem[systemVertex];
        }

        internal void ToSystem(double* input, double* system)
        {
            for (int s = 0; s < inputOfSystem.Length; ++s)
            {
                system[s] = input[inputOfSystem[s]];
            }
        }

        internal void ToInput(double* system, double* input)
        {
            for (int s = 0; s < inputOfSystem.Length; ++s)
            {
                input[inputOfSystem[s]] = system[s];
            }
        }

        internal static bool IsPrescribed(int tag)
        {
            return tag >= 1 && tag <= 3;
        }
    }
}
