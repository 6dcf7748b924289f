package zoren.cli;

import java.util.concurrent.Semaphore;

/** Bounds the pixels of all pictures in work together, so that many threads need no more memory. */
final class PixelBudget {
    // A bitmap's memory comes back with a collection, for which its few objects give no occasion.
    private static final int UNCOLLECTED_PIXELS = 8 << 20; // 32 MB

    private final int limit;
    private final Semaphore free;
    private int uncollected;

    PixelBudget(int limit) {
        this.limit = limit;
        free = new Semaphore(limit, true); // fair, or small pictures would keep a large one waiting
    }

    /** Takes the pixels of a picture, when others have given back enough; returns how many. */
    int take(Source source, long width, long height) throws Failure {
        if (width * height > limit) {
            throw new Failure(
                    source.name + ": " + width + " x " + height
                            + " pixels are more than --max-pixels allows, " + limit);
        }
        final int pixels = (int) (width * height);
        free.acquireUninterruptibly(pixels);
        return pixels;
    }

    void giveBack(int pixels) {
        synchronized (this) {
            uncollected += pixels;
            if (uncollected >= UNCOLLECTED_PIXELS) {
                uncollected = 0;
                System.gc();
            }
        }
        free.release(pixels);
    }
}
