# SPDX-License-Identifier: Apache-2.0
# The renderer that stays (mray-render --live), as a script sees it: a child that is
# started when there is something to draw, asked by lines and heard by lines.

package MrayRenderer;

use strict;
use warnings;
use Time::HiRes ();

use constant LONGEST => 64 * 1024;

# Nothing is started yet.
sub new {
	my ($class) = @_;
	return bless { pid => 0, heard => '' }, $class;
}

sub runs { $_[0]{pid} != 0 }

# What its lines come from, for select.
sub handle { $_[0]{from} }

# Starts it; gives what went wrong, or nothing.
sub start {
	my ($self) = @_;
	grep { -f "$_/mray-render" && -x _ } split /:/, $ENV{PATH} // ''
		or return 'there is no mray-render on PATH; it belongs there (libexec/tavrin)';
	pipe my $asked, $self->{to} or return "cannot make a pipe: $!";
	pipe $self->{from}, my $said or return "cannot make a pipe: $!";
	my $pid = fork;
	defined $pid or return "cannot start mray-render: $!";
	if (!$pid) {
		open STDIN, '<&', $asked;
		open STDOUT, '>&', $said;
		no warnings 'exec';
		exec 'mray-render', '--live';
		print STDERR "live: cannot start mray-render: $!\n";
		require POSIX;
		POSIX::_exit(127);
	}
	close $asked;
	close $said;
	@$self{qw(pid heard)} = ($pid, '');
	return '';
}

# Each word becomes one of the request's.
sub ask {
	my ($self, @words) = @_;
	s/([%\x00-\x20\x7f])/sprintf '%%%02x', ord $1/ge for @words;
	local $SIG{PIPE} = 'IGNORE';    # its end is met where it is heard
	syswrite $self->{to}, join(' ', @words) . "\n";
}

# What it says, once there is something: its lines, and undef at its end. One whose
# lines have no end is ended.
sub hear {
	my ($self) = @_;
	my $got = sysread $self->{from}, $self->{heard}, 4096, length $self->{heard};
	my @lines;
	push @lines, $1 while $self->{heard} =~ s/\A(.*?)\n//;
	my $floods = length $self->{heard} > LONGEST;
	kill 'KILL', $self->{pid} if $floods;
	return (@lines, !$got || $floods ? undef : ());
}

# Waits for one that has come to its end; gives how.
sub wait_for_end {
	my ($self) = @_;
	my $pid = $self->{pid};
	require POSIX;
	for (1 .. 200) {
		if (waitpid($pid, POSIX::WNOHANG()) == $pid) {
			my $how = $? & 127 ? 'signal ' . ($? & 127) : 'status ' . ($? >> 8);
			$self->{pid} = 0;
			$self->stop;
			return $how;
		}
		Time::HiRes::sleep(0.01);
	}
	return $self->stop;     # it has only closed its output
}

# Ends it, whatever it does.
sub stop {
	my ($self) = @_;
	close $_ for grep { defined } delete @$self{qw(to from)};
	my $pid = $self->{pid} or return 'stopped';
	$self->{pid} = 0;
	kill 'KILL', $pid;
	waitpid $pid, 0;
	return 'stopped';
}

1;
