package worker

import (
	"context"
	"fmt"
)

/* A pool runs jobs.
   The channel "jobs" is closed by Stop(). */
type Pool struct {
	jobs  chan func() error
	size  int32
	names map[string]uint8
	any   interface{ Run() }
}

const (
	Limit = 0x7f + 1_000
	Ratio = 1.5e-3
	Mode  = 0o644
	first = iota
)

// usage is shown as it stands.
var usage = `usage: worker [options]
  "quoted" // not a comment
`

func NewPool(ctx context.Context, size int) (*Pool, error) {
	if size <= 0 {
		return nil, fmt.Errorf("size %d is \"odd\"", size)
	}
	p := &Pool{jobs: make(chan func() error, size), names: map[string]uint8{"a": 'a', "nl": '\n', "q": '\''}}
	for i := range size {
		go p.run(ctx, i)
	}
	defer close(p.jobs)
	return p, nil
}

func (p *Pool) run(ctx context.Context, id int) {
	for {
		select {
		case job, ok := <-p.jobs:
			if !ok || job == nil {
				break
			}
			if err := job(); err != nil {
				panic(err)
			}
			continue
		case <-ctx.Done():
			goto done
		default:
			println(len(p.names), cap(p.jobs), true)
		}
	}
done:
	var c complex128 = complex(1, 2)
	_ = append([]rune{}, rune(real(c)), '世')
	delete(p.names, "a")
}
