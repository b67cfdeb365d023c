using System;
using System.Collections.Generic;
using System.Linq;

namespace RimCurves
{
    /// <summary>The closed chains of edges that have a triangle on one side only.</summary>
    internal static class BoundaryLoops
    {
        internal static List<int[]> LongestFirst(double[] vertices, int[] triangles)
        {
            return Walk(NextOnRim(triangles)).OrderByDescending(loop => Length(vertices, loop)).ToList();
        }

        /// <summary>For each rim vertex the one that follows it; the first triangle wins where rims touch.</summary>
        private static Dictionary<int, int> NextOnRim(int[] triangles)
        {
            var edges = new HashSet<Tuple<int, int>>();
            for (int k = 0; k < triangles.Length; ++k)
            {
                int next = k % 3 == 2 ? k - 2 : k + 1;
                edges.Add(Tuple.Create(triangles[k], triangles[next]));
            }
            var successor = new Dictionary<int, int>();
            foreach (Tuple<int, int> edge in edges)
            {
                if (!edges.Contains(Tuple.Create(edge.Item2, edge.Item1)) && !successor.ContainsKey(edge.Item1))
                {
                    successor.Add(edge.Item1, edge.Item2);
                }
            }
            return successor;
        }

        private static IEnumerable<int[]> Walk(Dictionary<int, int> successor)
        {
            while (successor.Count > 0)
            {
                int start = successor.Keys.Min();
                var loop = new List<int>();
                int at = start;
                int next;
                while (successor.TryGetValue(at, out next))
                {
                    successor.Remove(at);
                    loop.Add(at);
                    at = next;
                }
                if (at == start)
                {
                    yield return loop.ToArray();
                }
            }
        }

        private static double Length(double[] vertices, int[] loop)
        {
            double sum = 0;
            for (int k = 0; k < loop.Length; ++k)
            {
                sum += Point(vertices, loop[k]).DistanceTo(Point(vertices, loop[(k + 1) % loop.Length]));
            }
            return sum;
        }

        private static Qelm.Point3 Point(double[] vertices, int i)
        {
            return new Qelm.Point3(vertices[3 * i], vertices[3 * i + 1], vertices[3 * i + 2]);
        }
    }
}
